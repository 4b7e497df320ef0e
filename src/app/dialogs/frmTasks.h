#pragma once

#include "storage/TaskListFile.h"

#include <QDialog>
#include <QStringList>

struct AppContext;
class cSHAREDSettings;
class PrintSetup;
class QListView;
class QPagedPaintDevice;
class QStringListModel;
class UserDialogs;

// The to-do list: one-line tasks kept apart from the dated events, in the
// order they were added, saved to "tasklist.xml" in the data folder after
// every change.
//
// Opened by the main window's "tasklist" command: ShowTaskList(ctx, this).
class frmTasks : public QDialog {
    Q_OBJECT

public:
    // settings: "Datapath" (the folder of the list) and "DateStyle";
    // dialogs: the input boxes and messages.
    frmTasks(cSHAREDSettings& settings, UserDialogs& dialogs, QWidget* parent = nullptr);
    ~frmTasks() override;

    // Where print jobs go; null (the default) asks with the print dialog.
    void setPrintSetup(PrintSetup* setup) { m_printSetup = setup; }

    void Form_Load();
    void LoadTasks();
    void SaveTasks();

    QStringList Tasks() const;
    // Selected row, -1 when none.
    int SelectedIndex() const;
    void Select(int row);

    void cmd_add_Click();
    void cmd_change_Click();
    void cmd_delete_Click();
    void cmd_print_Click();
    void Cmd_exit_Click();

    // The printout on any paged device; false when it cannot be painted on.
    bool PrintTasks(QPagedPaintDevice& device);

    static constexpr const char* kSelectFirst = "Please select a task first";

private:
    // The task input box, asked again with a message until the text can be
    // kept in the task list; empty when cancelled.
    std::optional<QString> AskTask(const QString& title, const QString& text);

    cSHAREDSettings& m_settings;
    UserDialogs& m_dialogs;
    PrintSetup* m_printSetup = nullptr;
    TaskListFile m_file;
    QStringListModel* m_model = nullptr;
    QListView* m_list = nullptr;
};

// Runs the task list as a modal window over parent.
void ShowTaskList(AppContext& context, QWidget* parent = nullptr);
