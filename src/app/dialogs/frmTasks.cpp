#include "app/dialogs/frmTasks.h"
#include "app/WindowFit.h"

#include "app/AppContext.h"
#include "app/dialogs/PagePrinter.h"
#include "app/dialogs/QtPrintSetup.h"
#include "shared/DateValue.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "shared/cSharedLogging.h"

#include "storage/DataFiles.h"
#include "storage/StorableText.h"
#include <QApplication>
#include <QHBoxLayout>
#include <QListView>
#include <QPrinter>

#include <QPushButton>
#include <QStringListModel>
#include <QVBoxLayout>

namespace {

const QString kModule = QStringLiteral("frmTasks");

} // namespace

frmTasks::frmTasks(cSHAREDSettings& settings, UserDialogs& dialogs, QWidget* parent)
    : QDialog(parent), m_settings(settings), m_dialogs(dialogs),
      m_file(DataFiles::DataFolder(settings)) {
    setObjectName(QStringLiteral("frmTasks"));
    setWindowTitle(QStringLiteral("Task List"));

    m_model = new QStringListModel(this);
    m_list = new QListView(this);
    m_list->setObjectName(QStringLiteral("lst_tasks"));
    m_list->setModel(m_model);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setUniformItemSizes(true);

    auto makeButton = [this](const char* name, const QString& caption) {
        auto* button = new QPushButton(caption, this);
        button->setObjectName(QString::fromLatin1(name));
        button->setAutoDefault(false);
        return button;
    };
    auto* add = makeButton("cmd_add", QStringLiteral("&Add"));
    auto* change = makeButton("cmd_change", QStringLiteral("&Change"));
    auto* remove = makeButton("cmd_delete", QStringLiteral("&Delete"));
    auto* print = makeButton("cmd_print", QStringLiteral("&Print"));
    auto* exit = makeButton("Cmd_exit", QStringLiteral("E&xit"));

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(change);
    buttons->addWidget(remove);
    buttons->addSpacing(12);
    buttons->addWidget(print);
    buttons->addStretch(1);
    buttons->addWidget(exit);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);
    WindowFit::Apply(this, QSize(480, 360));

    connect(add, &QPushButton::clicked, this, &frmTasks::cmd_add_Click);
    connect(change, &QPushButton::clicked, this, &frmTasks::cmd_change_Click);
    connect(remove, &QPushButton::clicked, this, &frmTasks::cmd_delete_Click);
    connect(print, &QPushButton::clicked, this, &frmTasks::cmd_print_Click);
    connect(exit, &QPushButton::clicked, this, &frmTasks::Cmd_exit_Click);
    connect(m_list, &QListView::doubleClicked, this, &frmTasks::cmd_change_Click);

    Form_Load();
}

frmTasks::~frmTasks() = default;

void frmTasks::Form_Load() {
    LoadTasks();
}

void frmTasks::LoadTasks() {
    m_model->setStringList(m_file.Load());
}

void frmTasks::SaveTasks() {
    m_file.Save(m_model->stringList());
}

QStringList frmTasks::Tasks() const {
    return m_model->stringList();
}

int frmTasks::SelectedIndex() const {
    const QModelIndexList rows = m_list->selectionModel()->selectedIndexes();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void frmTasks::Select(int row) {
    if (row < 0 || row >= m_model->rowCount()) {
        m_list->clearSelection();
        return;
    }
    const QModelIndex index = m_model->index(row);
    m_list->setCurrentIndex(index);
    m_list->selectionModel()->select(index, QItemSelectionModel::ClearAndSelect);
}

std::optional<QString> frmTasks::AskTask(const QString& title, const QString& text) {
    const QString prompt = QStringLiteral("Enter a todo item:");
    std::optional<QString> answer = m_dialogs.InputBox(prompt, title, text);
    // A text the task list cannot keep is refused and offered again.
    while (answer) {
        const QString problem = StorableText::TaskProblem(*answer);
        if (problem.isEmpty()) {
            break;
        }
        m_dialogs.Message(problem);
        answer = m_dialogs.InputBox(prompt, title, *answer);
    }
    return answer;
}

void frmTasks::cmd_add_Click() {
    const std::optional<QString> answer = AskTask(QStringLiteral("Enter a task"), {});
    if (!answer || answer->isEmpty()) {
        return;
    }
    const int row = m_model->rowCount();
    m_model->insertRows(row, 1);
    m_model->setData(m_model->index(row), *answer);
    Select(row);
    SaveTasks();
}

void frmTasks::cmd_change_Click() {
    const int row = SelectedIndex();
    if (row < 0) {
        m_dialogs.Message(QString::fromLatin1(kSelectFirst));
        return;
    }
    // The box starts with the task, so a small correction needs no retyping.
    const std::optional<QString> answer =
        AskTask(QStringLiteral("Change Task"), m_model->stringList().at(row));
    if (!answer || answer->isEmpty()) {
        return;
    }
    m_model->setData(m_model->index(row), *answer);
    SaveTasks();
}

void frmTasks::cmd_delete_Click() {
    const int row = SelectedIndex();
    if (row < 0) {
        m_dialogs.Message(QString::fromLatin1(kSelectFirst));
        return;
    }
    // Asked first, as deleting an event is: a task deleted is gone for good.
    if (!m_dialogs.AskYesNo(QStringLiteral("Are you sure you want to delete this task?\r\n\r\n") +
                                m_model->stringList().at(row),
                            {}, false)) {
        return;
    }
    m_model->removeRows(row, 1);
    Select(std::min(row, m_model->rowCount() - 1));
    SaveTasks();
}

void frmTasks::cmd_print_Click() {
    QPrinter printer;
    PrintSetup& setup = m_printSetup != nullptr ? *m_printSetup : QtPrintSetup::Instance();
    if (!setup.Prepare(printer, QStringLiteral("Tasks"), this)) {
        return;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool printed = PrintTasks(printer);
    QApplication::restoreOverrideCursor();
    if (!printed) {
        m_dialogs.Message(PrinterNotReadyText(printer), {}, UserDialogs::Icon::Warning);
    }
}

bool frmTasks::PrintTasks(QPagedPaintDevice& device) {
    PagePrinter out(device);
    if (!out.begin()) {
        Log().AddAction(QStringLiteral("Printer not ready"), QStringLiteral("cmd_print_Click"),
                        kModule);
        return false;
    }
    out.heading(QStringLiteral("Tarvo task list"));
    out.line(QStringLiteral("Printed ") +
             cSharedDateSubs::ForSettings(m_settings).ShortFormatDate(TodayDate()));
    out.gap();
    const QStringList tasks = m_model->stringList();
    for (qsizetype i = 0; i < tasks.size(); ++i) {
        out.line(QString::number(i + 1) + QStringLiteral(") ") + tasks[i]);
    }
    out.end();
    return true;
}

void frmTasks::Cmd_exit_Click() {
    accept();
}

void ShowTaskList(AppContext& context, QWidget* parent) {
    frmTasks tasks(context.settings, context.dialogs, parent);
    tasks.exec();
}
