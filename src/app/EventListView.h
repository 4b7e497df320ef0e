#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QTreeView>

class EventListModel;

// The main window's event list control ("ListEvents"): a flat list over an
// EventListModel with the list's fixed column widths, several rows selectable
// at once, the colour legend as its tool tip, header clicks that flip the sort
// and a signal for the right-click menu. Rows are drawn from the model's
// precomputed texts with uniform heights, so large lists stay quick.
class EventListView : public QTreeView {
    Q_OBJECT
public:
    // What selectedRow gives when no row is selected.
    static constexpr int kNoSelection = -1;

    // The model is not owned (frmMain keeps it beside the view).
    explicit EventListView(EventListModel* model, QWidget* parent = nullptr);

    // The list's whole refill: remembers the selected position, rebuilds the
    // rows with drawing switched off, and selects the row now at that position
    // (the first row when the list got shorter or nothing was selected),
    // scrolled into view. An empty list has no selection.
    void FillEvents(int layer, bool showExpired);

    // The selected row the user works on (the current row when it is selected,
    // else the first selected one); kNoSelection when none.
    int selectedRow() const;
    // Every selected row, in list order.
    QList<int> selectedRows() const;
    // Selects just this row, makes it current and scrolls it into view.
    void selectRow(int row);
    // After a refill: the row at that position again, or the first row when
    // there is none there; the list is scrolled to the top first.
    void RestoreSelection(int row);

    static int TwipsToPixels(int twips) { return (twips + 7) / 15; }
    static QString ColourToolTip();

signals:
    // A right click on the list, at this screen position (after Qt selected
    // the row under the mouse): the place for the list's pop-up menu.
    void rightClicked(const QPoint& globalPos);
    // Enter or Return pressed with a row selected: open it, as a double-click does.
    void openRequested();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void HeaderClicked(int column);

    EventListModel* m_model;
};
