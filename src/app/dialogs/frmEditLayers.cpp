#include "app/dialogs/frmEditLayers.h"
#include "app/WindowFit.h"

#include "app/AppContext.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "storage/StorableText.h"
#include "storage/clsLayers.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {
// Boxes 0..10 in the first column, 11..20 in the second.
constexpr int kFirstColumnRows = 11;

QString captionFor(int index) {
    if (index == clsLayers::kShared) {
        return QStringLiteral("Shared:");
    }
    if (index == clsLayers::kAllCategories) {
        return QStringLiteral("All Categories:");
    }
    return QString::number(index) + QLatin1Char(':');
}
} // namespace

frmEditLayers::frmEditLayers(AppContext& context, QWidget* parent)
    : QDialog(parent), m_context(context) {
    setObjectName(QStringLiteral("frmEditLayers"));
    setWindowTitle(QStringLiteral("Category Names"));
    setModal(true);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(8);
    for (int i = 0; i < clsLayers::kCount; ++i) {
        auto* box = new QLineEdit(this);
        box->setObjectName(QStringLiteral("txtDesc%1").arg(i));
        box->setMinimumWidth(box->fontMetrics().horizontalAdvance(QLatin1Char('x')) * 24);
        box->installEventFilter(this);
        // "Shared" and "All Categories" are fixed names, shown but not edited.
        box->setEnabled(i != clsLayers::kShared && i != clsLayers::kAllCategories);
        auto* label = new QLabel(captionFor(i), this);
        label->setObjectName(QStringLiteral("Label1_%1").arg(i));
        label->setBuddy(box);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        txtDesc.append(box);
        Label1.append(label);
        const int row = i < kFirstColumnRows ? i : i - kFirstColumnRows;
        const int column = i < kFirstColumnRows ? 0 : 3;
        grid->addWidget(label, row, column);
        grid->addWidget(box, row, column + 1);
    }
    grid->setColumnMinimumWidth(2, 16);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(4, 1);

    cmdAccept = new QPushButton(QStringLiteral("Accept"), this);
    cmdAccept->setObjectName(QStringLiteral("cmdAccept"));
    cmdAccept->setDefault(true);
    cmdAbort = new QPushButton(QStringLiteral("Cancel"), this);
    cmdAbort->setObjectName(QStringLiteral("cmdAbort"));
    cmdAbort->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdAccept);
    buttons->addWidget(cmdAbort);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addSpacing(6);
    layout->addLayout(buttons);
    WindowFit::Apply(this, sizeHint());

    // Boxes in index order (down the first column, then the second), then
    // the buttons.
    for (int i = 1; i < clsLayers::kCount; ++i) {
        setTabOrder(txtDesc[i - 1], txtDesc[i]);
    }
    setTabOrder(txtDesc.last(), cmdAccept);
    setTabOrder(cmdAccept, cmdAbort);

    connect(cmdAccept, &QPushButton::clicked, this, &frmEditLayers::cmdAccept_Click);
    connect(cmdAbort, &QPushButton::clicked, this, &frmEditLayers::cmdAbort_Click);
    Form_Load();
}

frmEditLayers::~frmEditLayers() = default;

void frmEditLayers::Form_Load() {
    for (int i = 0; i < clsLayers::kCount; ++i) {
        txtDesc[i]->setText(m_context.layers.Layer(i).trimmed());
    }
}

void frmEditLayers::cmdAccept_Click() {
    // A category's name travels with every shared event as it is.
    for (int i = 0; i < clsLayers::kCount; ++i) {
        const QString problem =
            StorableText::AsIsProblem(QStringLiteral("category name"), txtDesc[i]->text());
        if (!problem.isEmpty()) {
            m_context.dialogs.Message(problem, {}, UserDialogs::Icon::Warning);
            txtDesc[i]->setFocus();
            return;
        }
    }
    for (int i = 0; i < clsLayers::kCount; ++i) {
        m_context.layers.setLayer(i, txtDesc[i]->text());
    }
    m_context.layers.SaveLayers();
    m_context.settings.SaveSettings(m_context.settingsFile);
    m_accepted = true;
    hide();
    done(QDialog::Accepted);
    QCoreApplication::processEvents();
}

void frmEditLayers::cmdAbort_Click() {
    m_accepted = false;
    hide();
    done(QDialog::Rejected);
    QCoreApplication::processEvents();
}

bool frmEditLayers::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        if (auto* edit = qobject_cast<QLineEdit*>(watched);
            edit != nullptr && txtDesc.contains(edit)) {
            // After the click that gave the focus has placed the cursor.
            QTimer::singleShot(0, edit, [edit] { edit->selectAll(); });
        }
    }
    return QDialog::eventFilter(watched, event);
}
