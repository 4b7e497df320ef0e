#include "app/EventListView.h"

#include "app/EventListModel.h"
#include "shared/cSharedLogging.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>

#include <algorithm>

EventListView::EventListView(EventListModel* model, QWidget* parent)
    : QTreeView(parent), m_model(model) {
    setObjectName(QStringLiteral("ListEvents"));
    setModel(model);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setToolTip(ColourToolTip());

    QHeaderView* head = header();
    head->setStretchLastSection(false);
    head->setSectionResizeMode(QHeaderView::Interactive);
    for (int c = 0; c < EventListModel::ColumnCount; ++c) {
        head->resizeSection(c, TwipsToPixels(EventListModel::HeaderWidthTwips(c)));
    }
    // The view's own sorting stays off: a click flips the model's one order flag
    // instead of the per-column toggling a header does by itself.
    setSortingEnabled(false);
    head->setSectionsClickable(true);
    head->setSortIndicatorShown(true);
    head->setSortIndicator(model->sortColumn(), model->sortOrder());
    connect(head, &QHeaderView::sectionClicked, this, &EventListView::HeaderClicked);
}

QString EventListView::ColourToolTip() {
    return QStringLiteral(
        "Black = normal, Red = Expired, Green = Your shared, Blue = Shared from others");
}

void EventListView::HeaderClicked(int column) {
    m_model->ColumnClick(column);
    header()->setSortIndicator(m_model->sortColumn(), m_model->sortOrder());
}

void EventListView::FillEvents(int layer, bool showExpired) {
    const int remembered = selectedRow();
    const bool wasEnabled = updatesEnabled();
    setUpdatesEnabled(false);
    m_model->FillEvents(layer, showExpired);
    Log().AddAction(QStringLiteral("Selecting current event"));
    RestoreSelection(remembered);
    setUpdatesEnabled(wasEnabled);
}

int EventListView::selectedRow() const {
    const QItemSelectionModel* sel = selectionModel();
    if (!sel) {
        return kNoSelection;
    }
    const QModelIndex current = sel->currentIndex();
    if (current.isValid() && sel->isRowSelected(current.row(), QModelIndex())) {
        return current.row();
    }
    const QList<int> rows = selectedRows();
    return rows.isEmpty() ? kNoSelection : rows.first();
}

QList<int> EventListView::selectedRows() const {
    QList<int> rows;
    if (const QItemSelectionModel* sel = selectionModel()) {
        for (const QModelIndex& idx : sel->selectedRows()) {
            rows.append(idx.row());
        }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

void EventListView::selectRow(int row) {
    if (row < 0 || row >= m_model->rowCount()) {
        return;
    }
    const QModelIndex idx = m_model->index(row, 0);
    selectionModel()->setCurrentIndex(idx, QItemSelectionModel::ClearAndSelect |
                                               QItemSelectionModel::Rows);
    scrollTo(idx);
}

void EventListView::RestoreSelection(int row) {
    const int count = m_model->rowCount();
    if (count == 0) {
        return;
    }
    if (row < 0 || row >= count) {
        row = 0;
    }
    scrollToTop();
    selectRow(row);
}

void EventListView::contextMenuEvent(QContextMenuEvent* event) {
    emit rightClicked(event->globalPos());
    event->accept();
}

void EventListView::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && event->modifiers() == Qt::NoModifier && selectedRow() != kNoSelection) {
        emit openRequested();
        event->accept();
        return;
    }
    QTreeView::keyPressEvent(event);
}
