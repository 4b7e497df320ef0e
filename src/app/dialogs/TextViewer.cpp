#include "app/dialogs/TextViewer.h"
#include "app/WindowFit.h"

#include "shared/AppResources.h"
#include "shared/ErrorReportText.h"
#include "shared/cSharedLogging.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBrowser>
#include <QTimer>
#include <QVBoxLayout>

TextViewer::TextViewer(QWidget* parent, const QString& name)
    : QDialog(parent), m_browser(new QTextBrowser(this)) {
    setObjectName(name);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    m_browser->setObjectName(QStringLiteral("txtViewer"));
    m_browser->setOpenExternalLinks(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setObjectName(QStringLiteral("cmdClose"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_browser);
    layout->addWidget(buttons);
    WindowFit::Apply(this, QSize(760, 560));
}

TextViewer* TextViewer::find(QWidget* parent, const QString& name) {
    const QList<TextViewer*> open =
        parent != nullptr ? parent->findChildren<TextViewer*>(name) : QList<TextViewer*>();
    if (!open.isEmpty()) {
        return open.first();
    }
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (auto* viewer = qobject_cast<TextViewer*>(w);
            viewer != nullptr && viewer->objectName() == name && viewer->parentWidget() == parent) {
            return viewer;
        }
    }
    return new TextViewer(parent, name);
}

void TextViewer::present() {
    show();
    raise();
    activateWindow();
}

TextViewer* TextViewer::ShowText(QWidget* parent, const QString& name, const QString& title,
                                 const QString& text, bool atEnd) {
    TextViewer* viewer = find(parent, name);
    viewer->setWindowTitle(title);
    viewer->m_browser->setLineWrapMode(atEnd ? QTextEdit::NoWrap : QTextEdit::WidgetWidth);
    viewer->m_browser->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    viewer->m_browser->setPlainText(text);
    viewer->present();
    if (atEnd) {
        // Now and once the text is laid out at the window's size.
        auto toEnd = [browser = viewer->m_browser] {
            browser->verticalScrollBar()->setValue(browser->verticalScrollBar()->maximum());
        };
        toEnd();
        QTimer::singleShot(0, viewer->m_browser, toEnd);
    }
    return viewer;
}

TextViewer* TextViewer::ShowLog(QWidget* parent) {
    Log().WriteActionsToLog();
    return ShowText(parent, QStringLiteral("frmLog"),
                    QStringLiteral("Program log - ") + Log().CurrentLogFilename(),
                    ErrorReportText::CurrentLogText(), true);
}

TextViewer* TextViewer::ShowHelp(QWidget* parent, const QString& anchor) {
    AppResources::Init();
    TextViewer* viewer = find(parent, QStringLiteral("frmHelp"));
    viewer->setWindowTitle(QStringLiteral("Tarvo help"));
    QUrl page(QString::fromLatin1(kHelpPage));
    if (!anchor.isEmpty()) {
        page.setFragment(anchor);
    }
    viewer->m_browser->setSource(page);
    viewer->present();
    if (!anchor.isEmpty()) {
        // Once the page is laid out at the window's size.
        viewer->m_browser->scrollToAnchor(anchor);
        QTimer::singleShot(0, viewer->m_browser, [browser = viewer->m_browser, anchor] {
            browser->scrollToAnchor(anchor);
        });
    }
    return viewer;
}
