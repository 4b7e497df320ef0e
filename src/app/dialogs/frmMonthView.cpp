#include "app/dialogs/frmMonthView.h"
#include "app/WindowFit.h"

#include "app/AppContext.h"
#include "app/dialogs/PagePrinter.h"
#include "app/dialogs/QtPrintSetup.h"
#include "shared/RuntimeError.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "shared/cSharedLogging.h"
#include "storage/DataFiles.h"
#include "storage/MonthViewEvents.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QPushButton>
#include <QTextCursor>
#include <QTextDocument>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QString kModule = QStringLiteral("frmMonthView");

// The layer filter that shows every event.
constexpr int kAllLayers = MonthCalendar::kAllLayers;

QPushButton* MakeButton(QWidget* parent, const char* name, const QString& caption,
                        const QString& tip = {}) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    if (!tip.isEmpty()) {
        button->setToolTip(tip);
    }
    return button;
}

// A day box's text: the day number (in bold) on the first line, then one
// line per event, each line ended by a line break.
void FillBox(QPlainTextEdit* box, int day, const QStringList& lines) {
    box->clear();
    QTextCursor cursor(box->document());
    QTextCharFormat number;
    number.setFontWeight(QFont::Bold);
    cursor.insertText(QString::number(day), number);
    QString rest = QStringLiteral("\n");
    for (const QString& line : lines) {
        rest += line + QLatin1Char('\n');
    }
    cursor.insertText(rest, QTextCharFormat());
    box->moveCursor(QTextCursor::Start);
}

} // namespace

frmMonthView::frmMonthView(AppContext& context, QWidget* parent)
    : QDialog(parent), m_context(context) {
    setObjectName(QStringLiteral("frmMonthView"));
    m_calendar = std::make_unique<MonthCalendar>(YearOf(TodayDate()), MonthOf(TodayDate()));
    buildWindow();
    Form_Load();
}

frmMonthView::~frmMonthView() = default;

void frmMonthView::buildWindow() {
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);

    m_layers = new QComboBox(this);
    m_layers->setObjectName(QStringLiteral("cmbLayers"));
    m_layers->setMinimumContentsLength(16);
    m_layers->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);

    m_date = new QLabel(this);
    m_date->setObjectName(QStringLiteral("lblDate"));
    m_date->setAlignment(Qt::AlignCenter);
    QFont dateFont = m_date->font();
    dateFont.setPointSizeF(dateFont.pointSizeF() * 1.5);
    dateFont.setBold(true);
    m_date->setFont(dateFont);
    m_date->setMinimumWidth(
        QFontMetrics(dateFont).horizontalAdvance(QStringLiteral("September 0000")) + 16);

    auto* prevYear =
        MakeButton(this, "cmd_prevyear", QStringLiteral("<<"), QStringLiteral("Previous Year"));
    auto* prevMonth =
        MakeButton(this, "cmd_prevmonth", QStringLiteral("&<"), QStringLiteral("Previous Month"));
    auto* now = MakeButton(this, "cmdNow", QStringLiteral("< >"),
                           QStringLiteral("Return to current month and year"));
    auto* nextMonth =
        MakeButton(this, "cmd_nextmonth", QStringLiteral("&>"), QStringLiteral("Next Month"));
    auto* nextYear =
        MakeButton(this, "cmd_nextyear", QStringLiteral(">>"), QStringLiteral("Next Year"));

    auto* top = new QHBoxLayout;
    top->addWidget(m_layers);
    top->addStretch(1);
    top->addWidget(prevYear);
    top->addWidget(prevMonth);
    top->addWidget(m_date);
    top->addWidget(nextMonth);
    top->addWidget(nextYear);
    top->addStretch(1);
    top->addWidget(now);

    auto* grid = new QGridLayout;
    grid->setSpacing(2);
    static const char* const kDays[] = {"SUN", "MON", "TUE", "WED", "THU", "FRI", "SAT"};
    for (int column = 0; column < 7; ++column) {
        auto* label = new QLabel(QString::fromLatin1(kDays[column]), this);
        label->setObjectName(QStringLiteral("lblDay%1").arg(column));
        label->setAlignment(Qt::AlignCenter);
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
        grid->addWidget(label, 0, column);
        m_dayLabels.append(label);
        grid->setColumnStretch(column, 1);
    }
    QFont boxFont = font();
    boxFont.setPointSizeF(std::max(7.0, boxFont.pointSizeF() - 1));
    for (int index = 0; index < MonthCalendar::kBoxCount; ++index) {
        auto* box = new QPlainTextEdit(this);
        box->setObjectName(QStringLiteral("Calbox%1").arg(index));
        box->setReadOnly(true);
        box->setLineWrapMode(QPlainTextEdit::NoWrap);
        box->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        box->setFont(boxFont);
        box->setMinimumSize(90, 64);
        box->setAutoFillBackground(true);
        grid->addWidget(box, 1 + index / 7, index % 7);
        m_boxes.append(box);
    }
    for (int row = 1; row <= 6; ++row) {
        grid->setRowStretch(row, 1);
    }

    auto* print = MakeButton(this, "cmd_print", QStringLiteral("&Print Event List"));
    auto* printCal = MakeButton(this, "cmdPrintCal", QStringLiteral("Print &Calendar"));
    auto* viewEvents = MakeButton(this, "cmdViewEvents", QStringLiteral("View Event List"));
    auto* exit = MakeButton(this, "cmd_exit", QStringLiteral("&Exit"));
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(print);
    bottom->addWidget(printCal);
    bottom->addWidget(viewEvents);
    bottom->addStretch(1);
    bottom->addWidget(exit);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(grid, 1);
    layout->addLayout(bottom);
    WindowFit::Apply(this, QSize(980, 700));

    connect(m_layers, &QComboBox::activated, this, &frmMonthView::cmbLayers_Click);
    connect(prevYear, &QPushButton::clicked, this, &frmMonthView::cmd_prevyear_Click);
    connect(prevMonth, &QPushButton::clicked, this, &frmMonthView::cmd_prevmonth_Click);
    connect(now, &QPushButton::clicked, this, &frmMonthView::cmdNow_Click);
    connect(nextMonth, &QPushButton::clicked, this, &frmMonthView::cmd_nextmonth_Click);
    connect(nextYear, &QPushButton::clicked, this, &frmMonthView::cmd_nextyear_Click);
    connect(print, &QPushButton::clicked, this, &frmMonthView::cmd_print_Click);
    connect(printCal, &QPushButton::clicked, this, &frmMonthView::cmdPrintCal_Click);
    connect(viewEvents, &QPushButton::clicked, this, &frmMonthView::cmdViewEvents_Click);
    connect(exit, &QPushButton::clicked, this, &frmMonthView::cmd_exit_Click);
}

void frmMonthView::Form_Load() {
    Log().LogEvent(QStringLiteral("Opening monthly calendar"));
    m_loading = true;
    m_layers->clear();
    for (int index = 0; index < clsLayers::kCount; ++index) {
        m_layers->addItem(m_context.layers.Layer(index));
    }
    m_layers->setCurrentIndex(kAllLayers);
    m_loading = false;
    const DateValue today = TodayDate();
    ShowMonth(YearOf(today), MonthOf(today));
}

int frmMonthView::SelectedLayer() const {
    const int index = m_layers->currentIndex();
    return index < 0 ? kAllLayers : index;
}

void frmMonthView::ShowMonth(int year, int month) {
    m_year = std::clamp(year, kMinYear, kMaxYear);
    m_month = std::clamp(month, 1, 12);
    LoadMonth(SelectedLayer());
}

QPlainTextEdit* frmMonthView::Calbox(int index) const {
    return (index >= 0 && index < m_boxes.size()) ? m_boxes[index] : nullptr;
}

QString frmMonthView::BoxText(int index) const {
    const QPlainTextEdit* box = Calbox(index);
    return box != nullptr ? box->toPlainText() : QString();
}

void frmMonthView::ClearBoxes() {
    const QColor outside = palette().color(QPalette::Window);
    for (QPlainTextEdit* box : m_boxes) {
        box->clear();
        QPalette colours = box->palette();
        colours.setColor(QPalette::Base, outside);
        box->setPalette(colours);
    }
}

void frmMonthView::SetupBoxes(DateValue firstOfMonth) {
    const MonthCalendar month(YearOf(firstOfMonth), MonthOf(firstOfMonth));
    const DateValue today = TodayDate();
    const QPalette system = palette();
    for (int day = 1; day <= month.DayCount(); ++day) {
        QPlainTextEdit* box = Calbox(month.BoxOfDay(day));
        if (box == nullptr) {
            continue;
        }
        QPalette colours = box->palette();
        colours.setColor(QPalette::Base, month.FirstDay() + day - 1 == today
                                             ? QColor::fromRgb(kTodayColour)
                                             : system.color(QPalette::Base));
        colours.setColor(QPalette::Text, system.color(QPalette::Text));
        box->setPalette(colours);
        FillBox(box, day, {});
    }
}

void frmMonthView::LoadMonth(int layer) {
    try {
        setUpdatesEnabled(false);
        QString eventsFile = m_context.events.DBFilename();
        if (eventsFile.isEmpty()) {
            eventsFile = DataFiles::EventsFile(m_context.settings);
        }
        MonthViewEvents source(m_context.settings, &m_context.layers);
        source.Load(eventsFile);

        m_calendar = std::make_unique<MonthCalendar>(m_year, m_month);
        ClearBoxes();
        SetupBoxes(m_calendar->FirstDay());
        m_date->setText(m_calendar->MonthTitle());
        setWindowTitle(QStringLiteral("TVO Monthly View (") +
                       m_context.layers.Layer(layer).trimmed() + QLatin1Char(')'));

        m_calendar->AddEvents(source.Events(), layer, source.Networked());
        for (int day = 1; day <= m_calendar->DayCount(); ++day) {
            const QStringList lines = m_calendar->Lines(day);
            if (lines.isEmpty()) {
                continue;
            }
            FillBox(Calbox(m_calendar->BoxOfDay(day)), day, lines);
        }
    } catch (const RuntimeError& e) {
        LogRuntimeError(e, QStringLiteral("LoadMonth"), kModule);
    }
    setUpdatesEnabled(true);
}

void frmMonthView::cmbLayers_Click() {
    if (!m_loading) {
        LoadMonth(SelectedLayer());
    }
}

void frmMonthView::cmd_prevyear_Click() {
    ShowMonth(m_year - 1, m_month);
}
void frmMonthView::cmd_nextyear_Click() {
    ShowMonth(m_year + 1, m_month);
}

void frmMonthView::cmd_prevmonth_Click() {
    if (m_month == 1) {
        ShowMonth(m_year - 1, 12);
    } else {
        ShowMonth(m_year, m_month - 1);
    }
}

void frmMonthView::cmd_nextmonth_Click() {
    if (m_month == 12) {
        ShowMonth(m_year + 1, 1);
    } else {
        ShowMonth(m_year, m_month + 1);
    }
}

void frmMonthView::cmdNow_Click() {
    const DateValue today = TodayDate();
    ShowMonth(YearOf(today), MonthOf(today));
}

void frmMonthView::cmdViewEvents_Click() {
    auto* window = new QDialog(this);
    window->setObjectName(QStringLiteral("frmEventList"));
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(QStringLiteral("Events for ") + m_calendar->MonthTitle());
    auto* text = new QPlainTextEdit(window);
    text->setObjectName(QStringLiteral("txtEventList"));
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    text->setTabStopDistance(QFontMetricsF(text->font()).horizontalAdvance(QLatin1Char(' ')) * 8);
    text->setPlainText(m_calendar->EventListText());
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, window);
    connect(buttons, &QDialogButtonBox::rejected, window, &QDialog::close);
    auto* layout = new QVBoxLayout(window);
    layout->addWidget(text);
    layout->addWidget(buttons);
    WindowFit::Apply(window, QSize(520, 600));
    window->show();
}

void frmMonthView::cmd_exit_Click() {
    reject();
}

void frmMonthView::cmd_print_Click() {
    runPrint(false);
}

void frmMonthView::cmdPrintCal_Click() {
    runPrint(true);
}

void frmMonthView::runPrint(bool calendar) {
    QPrinter printer;
    printer.setPageOrientation(calendar ? QPageLayout::Landscape : QPageLayout::Portrait);
    PrintSetup& setup = m_printSetup != nullptr ? *m_printSetup : QtPrintSetup::Instance();
    if (!setup.Prepare(printer, QStringLiteral("MonthView"), this)) {
        return;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool printed = calendar ? PrintCalendar(printer) : PrintEventList(printer);
    QApplication::restoreOverrideCursor();
    if (!printed) {
        m_context.dialogs.Message(PrinterNotReadyText(printer), {}, UserDialogs::Icon::Warning);
    }
}

QString frmMonthView::printedDate() const {
    return cSharedDateSubs::ForSettings(m_context.settings).ShortFormatDate(TodayDate());
}

bool frmMonthView::PrintEventList(QPagedPaintDevice& device) {
    PagePrinter out(device);
    if (!out.begin()) {
        Log().AddAction(QStringLiteral("Printer not ready"), QStringLiteral("cmd_print_Click"),
                        kModule);
        return false;
    }
    out.heading(QStringLiteral("Events for ") + m_calendar->MonthTitle());
    out.line(QStringLiteral("Printed ") + printedDate());
    out.gap();
    for (int day = 1; day <= m_calendar->DayCount(); ++day) {
        // Whole descriptions, each wrapped in the column beside the day.
        const QStringList lines = m_calendar->FullLines(day);
        for (qsizetype i = 0; i < lines.size(); ++i) {
            out.row(i == 0 ? m_calendar->DayTitle(day) : QString(), lines[i],
                    QStringLiteral("Wed 30"));
        }
    }
    out.end();
    return true;
}

bool frmMonthView::PrintCalendar(QPagedPaintDevice& device) {
    Log().LogEvent(QStringLiteral("Printing calendar"));
    cSharedDateSubs& dates = cSharedDateSubs::ForSettings(m_context.settings);
    Log().LogEvent(QStringLiteral("From ") + dates.ShortFormatDate(m_calendar->FirstDay()) +
                   QStringLiteral(" to ") + dates.ShortFormatDate(m_calendar->LastDay()));
    QPainter painter;
    if (!painter.begin(&device)) {
        Log().AddAction(QStringLiteral("Printer not ready"), QStringLiteral("cmdPrintCal_Click"),
                        kModule);
        return false;
    }
    const QString heading = QStringLiteral("Calendar for ") + m_calendar->MonthTitle() +
                            QStringLiteral("  Printed ") + printedDate();
    drawCalendarPage(painter, QRect(0, 0, device.width(), device.height()), heading);
    painter.end();
    Log().LogEvent(QStringLiteral("Finished printing calendar"));
    return true;
}

void frmMonthView::drawCalendarPage(QPainter& painter, const QRect& area, const QString& heading) {
    const MonthCalendar& month = *m_calendar;
    cSharedDateSubs& dates = cSharedDateSubs::ForSettings(m_context.settings);
    QFont headingFont(QStringLiteral("Sans Serif"), 16, QFont::Bold);
    QFont dayNameFont(QStringLiteral("Sans Serif"), 10, QFont::Bold);
    QFont numberFont(QStringLiteral("Sans Serif"), 10, QFont::Bold);
    QFont lineFont(QStringLiteral("Sans Serif"), 8);

    painter.setFont(headingFont);
    const int headingHeight = QFontMetrics(headingFont, painter.device()).height();
    painter.drawText(QRect(area.left(), area.top(), area.width(), headingHeight),
                     Qt::AlignHCenter | Qt::AlignTop, heading);
    Log().LogEvent(QStringLiteral("Printed Header"));

    const int namesHeight = QFontMetrics(dayNameFont, painter.device()).height() * 3 / 2;
    const int top = area.top() + headingHeight * 3 / 2;
    const int firstBox = month.BoxOfDay(1);
    const int rows = (month.BoxOfDay(month.DayCount()) / 7) + 1;
    const int columnWidth = area.width() / 7;
    const int rowHeight = (area.bottom() - top - namesHeight) / rows;

    painter.setFont(dayNameFont);
    static const char* const kDays[] = {"SUN", "MON", "TUE", "WED", "THU", "FRI", "SAT"};
    for (int column = 0; column < 7; ++column) {
        painter.drawText(QRect(area.left() + column * columnWidth, top, columnWidth, namesHeight),
                         Qt::AlignCenter, QString::fromLatin1(kDays[column]));
    }
    const int gridTop = top + namesHeight;
    QPen pen(Qt::black);
    pen.setWidthF(std::max(1.0, painter.device()->logicalDpiX() / 96.0));
    painter.setPen(pen);
    for (int box = 0; box < rows * 7; ++box) {
        painter.drawRect(area.left() + (box % 7) * columnWidth, gridTop + (box / 7) * rowHeight,
                         columnWidth, rowHeight);
    }

    Log().LogEvent(QStringLiteral("Starting print loop"));
    const int pad = std::max(2, columnWidth / 40);
    const QFontMetrics lineMetrics(lineFont, painter.device());
    const int numberHeight = QFontMetrics(numberFont, painter.device()).height();
    for (int day = 1; day <= month.DayCount(); ++day) {
        Log().LogEvent(QStringLiteral("CurrentDate: ") +
                       dates.ShortFormatDate(month.FirstDay() + day - 1));
        const int box = firstBox + day - 1;
        const QRect cell(area.left() + (box % 7) * columnWidth + pad,
                         gridTop + (box / 7) * rowHeight + pad, columnWidth - 2 * pad,
                         rowHeight - 2 * pad);
        painter.save();
        painter.setClipRect(cell);
        painter.setFont(numberFont);
        painter.drawText(cell, Qt::AlignLeft | Qt::AlignTop, QString::number(day));
        painter.setFont(lineFont);
        int y = cell.top() + numberHeight;
        const QStringList lines = month.Lines(day);
        // Lines that do not fit give way to a count of what is left out.
        const int room = std::max(0, (cell.bottom() + 1 - y) / lineMetrics.height());
        const qsizetype shown = lines.size() <= room ? lines.size() : std::max(0, room - 1);
        for (qsizetype i = 0; i < shown; ++i) {
            painter.drawText(QRect(cell.left(), y, cell.width(), lineMetrics.height()),
                             Qt::AlignLeft | Qt::AlignTop,
                             lineMetrics.elidedText(lines[i], Qt::ElideRight, cell.width()));
            y += lineMetrics.height();
        }
        if (shown < lines.size() && room > 0) {
            painter.drawText(QRect(cell.left(), y, cell.width(), lineMetrics.height()),
                             Qt::AlignLeft | Qt::AlignTop,
                             QStringLiteral("+%1 more").arg(lines.size() - shown));
        }
        painter.restore();
    }
}

void ShowMonthView(AppContext& context, QWidget* parent) {
    frmMonthView view(context, parent);
    view.exec();
}
