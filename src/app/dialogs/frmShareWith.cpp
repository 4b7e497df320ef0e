#include "app/dialogs/frmShareWith.h"
#include "app/WindowFit.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>
#include <QVBoxLayout>

frmShareWith::frmShareWith(const clsEvent& event, const QStringList& users, QWidget* parent)
    : QDialog(parent), m_shared(new QCheckBox(QStringLiteral("&Share this event"), this)),
      m_everyone(new QRadioButton(QStringLiteral("With &all users"), this)),
      m_specific(new QRadioButton(QStringLiteral("&Only with the users ticked below"), this)),
      m_users(new QListWidget(this)) {
    setObjectName(QStringLiteral("frmShareWith"));
    setWindowTitle(QStringLiteral("Share with ..."));
    m_shared->setObjectName(QStringLiteral("chkShared"));
    m_everyone->setObjectName(QStringLiteral("optEveryone"));
    m_specific->setObjectName(QStringLiteral("optSpecific"));
    m_users->setObjectName(QStringLiteral("lstShareUsers"));

    auto* heading = new QLabel(
        QStringLiteral("<b>") + event.Desc().toHtmlEscaped() + QStringLiteral("</b>"), this);
    heading->setWordWrap(true);
    m_shared->setChecked(event.SharedEvent);
    (event.ShareWithSpecific ? m_specific : m_everyone)->setChecked(true);
    for (const QString& user : users) {
        auto* item = new QListWidgetItem(user, m_users);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(event.NameInShared(user) ? Qt::Checked : Qt::Unchecked);
    }

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(m_shared);
    layout->addWidget(m_everyone);
    layout->addWidget(m_specific);
    layout->addWidget(m_users, 1);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_shared, &QCheckBox::toggled, this, &frmShareWith::updateEnabled);
    connect(m_specific, &QRadioButton::toggled, this, &frmShareWith::updateEnabled);
    updateEnabled();
    WindowFit::Apply(this, QSize(360, 340));
}

void frmShareWith::updateEnabled() {
    m_everyone->setEnabled(m_shared->isChecked());
    m_specific->setEnabled(m_shared->isChecked());
    m_users->setEnabled(m_shared->isChecked() && m_specific->isChecked());
}

void frmShareWith::ApplyTo(clsEvent& event) const {
    event.SharedEvent = m_shared->isChecked();
    event.ShareWithSpecific = event.SharedEvent && m_specific->isChecked();
    QString names;
    for (int i = 0; i < m_users->count(); ++i) {
        if (m_users->item(i)->checkState() == Qt::Checked) {
            names += m_users->item(i)->text() + QStringLiteral("\r\n");
        }
    }
    event.ShareNames = event.ShareWithSpecific ? names : QString();
}
