// The main window's undo history: the Edit menu's Undo and Redo, and what
// the window does after each step. The commands themselves are in
// UndoCommands; the list commands push them as they make their changes.
#include "app/EventListModel.h"
#include "app/EventListView.h"
#include "app/UndoCommands.h"
#include "app/frmMain.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QStatusBar>
#include <QTimer>
#include <QUndoStack>

void frmMain::buildEditMenu() {
    m_history = new QUndoStack(this);
    m_history->setObjectName(QStringLiteral("UndoHistory"));
    QAction* undo = m_history->createUndoAction(this, QStringLiteral("&Undo"));
    undo->setObjectName(QStringLiteral("mnuUndo"));
    undo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    QAction* redo = m_history->createRedoAction(this, QStringLiteral("&Redo"));
    redo->setObjectName(QStringLiteral("mnuRedo"));
    redo->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edit"));
    edit->setObjectName(QStringLiteral("mnuEdit"));
    edit->addAction(undo);
    edit->addAction(redo);
    statusBar()->setObjectName(QStringLiteral("StatusBar"));
}

void frmMain::record(EventChangeCommand* command) {
    if (command->IsEmpty()) {
        delete command;
    } else {
        m_history->push(command);
    }
}

std::function<void(const QList<EventPtr>&, bool)> frmMain::stepDone() {
    return
        [this](const QList<EventPtr>& touched, bool applied) { historyStepDone(touched, applied); };
}

void frmMain::historyStepDone(const QList<EventPtr>& touched, bool applied) {
    if (!applied) {
        // The objects the history holds are no longer the lists' own; it
        // is dropped once the step has returned to the stack.
        statusBar()->showMessage(
            QStringLiteral("The events were loaded again, so there is nothing to undo"), 6000);
        QTimer::singleShot(0, m_history, &QUndoStack::clear);
        return;
    }
    FillEvents();
    const QSet<const clsEvent*> wanted = [&] {
        QSet<const clsEvent*> set;
        for (const EventPtr& e : touched) {
            set.insert(e.get());
        }
        return set;
    }();
    // The touched events that are still listed are selected; when none is
    // (an undone add, a redone delete) the refill's selection stays.
    bool first = true;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (!wanted.contains(m_model->event(row).get())) {
            continue;
        }
        if (first) {
            m_list->clearSelection();
            SelectRow(row);
            first = false;
        } else {
            m_list->selectionModel()->select(m_model->index(row, 0), QItemSelectionModel::Select |
                                                                         QItemSelectionModel::Rows);
        }
    }
}
