#pragma once

#include "engine/MonthCalendar.h"
#include "shared/DateValue.h"

#include <QDialog>
#include <QList>

#include <memory>

struct AppContext;
class PrintSetup;
class QComboBox;
class QLabel;
class QPagedPaintDevice;
class QPainter;
class QPlainTextEdit;
class QPushButton;

// The month calendar: 42 day boxes (six weeks, Sunday first) listing the
// events of each day of one month, recurring events at every occurrence,
// with a layer filter, month and year navigation, a plain-text event list
// and two printouts. The view reads its own copy of the databases for every
// month and never writes events back.
//
// Opened by the main window's "monthview" command: ShowMonthView(ctx, this).
class frmMonthView : public QDialog {
    Q_OBJECT

public:
    explicit frmMonthView(AppContext& context, QWidget* parent = nullptr);
    ~frmMonthView() override;

    // Where print jobs go; null (the default) asks with the print dialog.
    void setPrintSetup(PrintSetup* setup) { m_printSetup = setup; }

    // Fills the layer list (all layers chosen) and shows the current month.
    void Form_Load();
    // Rebuilds the grid for the shown month under a layer filter (0..20).
    void LoadMonth(int layer);
    // Numbers and colours the boxes of the month starting on firstOfMonth.
    void SetupBoxes(DateValue firstOfMonth);
    void ClearBoxes();
    int SelectedLayer() const;

    // Shows another month with the chosen layer filter.
    void ShowMonth(int year, int month);

    // Day box 0..41, and its text ("day\nline\nline...", "" when empty).
    QPlainTextEdit* Calbox(int index) const;
    QString BoxText(int index) const;
    const MonthCalendar& Calendar() const { return *m_calendar; }

    // Handlers of the controls of the same names.
    void cmbLayers_Click();
    void cmd_prevyear_Click();
    void cmd_prevmonth_Click();
    void cmdNow_Click();
    void cmd_nextmonth_Click();
    void cmd_nextyear_Click();
    void cmd_print_Click();
    void cmdPrintCal_Click();
    void cmdViewEvents_Click();
    void cmd_exit_Click();

    // The printouts, drawn on any paged device (a printer or a PDF writer).
    // false when the device cannot be painted on.
    bool PrintCalendar(QPagedPaintDevice& device);
    bool PrintEventList(QPagedPaintDevice& device);

    // Background of today's box.
    static constexpr QRgb kTodayColour = 0xFFFFE0C0; // RGB(255,224,192)

private:
    void buildWindow();
    QString printedDate() const;
    void drawCalendarPage(QPainter& painter, const QRect& area, const QString& heading);
    void runPrint(bool calendar);

    AppContext& m_context;
    PrintSetup* m_printSetup = nullptr;
    int m_year = 0;
    int m_month = 0;
    bool m_loading = false;
    std::unique_ptr<MonthCalendar> m_calendar;

    QComboBox* m_layers = nullptr;
    QLabel* m_date = nullptr;
    QList<QLabel*> m_dayLabels;
    QList<QPlainTextEdit*> m_boxes;
};

// Runs the month view as a modal window over parent.
void ShowMonthView(AppContext& context, QWidget* parent = nullptr);
