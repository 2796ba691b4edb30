// SPDX-License-Identifier: BSD-3-Clause
#include "rowlistview_p.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace {

bool isOneLine(const QString &text)
{
    return std::none_of(text.begin(), text.end(), [](QChar character) {
        const QChar::Category category = character.category();
        return category == QChar::Other_Control || category == QChar::Separator_Line ||
               category == QChar::Separator_Paragraph;
    });
}

} // namespace

RowListView::RowListView(QWidget *parent) : ItemView(parent)
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setEditTriggers(NoEditTriggers);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
}

void RowListView::setModelColumn(int column)
{
    m_column = column;
    viewport()->update();
}

void RowListView::setModel(QAbstractItemModel *newModel)
{
    if (model())
        model()->disconnect(this);
    ItemView::setModel(newModel);
    if (newModel) {
        connect(newModel, &QAbstractItemModel::rowsRemoved, this, &RowListView::updateGeometries);
        connect(newModel, &QAbstractItemModel::layoutChanged, this, &RowListView::updateGeometries);
    }
    m_rowHeight = 0;
}

void RowListView::rowsInserted(const QModelIndex &parent, int start, int end)
{
    ItemView::rowsInserted(parent, start, end);
    updateGeometries();
}

int RowListView::rows() const
{
    return model() ? model()->rowCount(rootIndex()) : 0;
}

QModelIndex RowListView::indexOfRow(int row) const
{
    return model() ? model()->index(row, m_column, rootIndex()) : QModelIndex();
}

QStyleOptionViewItem RowListView::itemOption() const
{
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    return option;
}

// All rows have the height of the first one, of which at most two lines are shown.
int RowListView::rowHeight() const
{
    if (m_rowHeight == 0) {
        const QModelIndex first = indexOfRow(0);
        if (!first.isValid())
            return fontMetrics().height();
        m_rowHeight = qMax(1, itemDelegate()->sizeHint(itemOption(), first).height());
        if (!isOneLine(first.data().toString()))
            m_rowHeight = qMin(m_rowHeight, 2 * fontMetrics().height());
    }
    return m_rowHeight;
}

int RowListView::sizeHintForRow(int row) const
{
    return row >= 0 && row < rows() ? rowHeight() : -1;
}

QRect RowListView::visualRect(const QModelIndex &index) const
{
    if (!index.isValid() || index.column() != m_column)
        return {};
    return {0, index.row() * rowHeight() - verticalOffset(), viewport()->width(), rowHeight()};
}

QModelIndex RowListView::indexAt(const QPoint &point) const
{
    const int y = point.y() + verticalOffset();
    if (y < 0 || !viewport()->rect().contains(point.x(), 0))
        return {};
    return y / rowHeight() < rows() ? indexOfRow(y / rowHeight()) : QModelIndex();
}

void RowListView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (!index.isValid())
        return;
    const int top = index.row() * rowHeight();
    const int highest = top + rowHeight() - viewport()->height();
    QScrollBar *const bar = verticalScrollBar();
    switch (hint) {
    case EnsureVisible:
        if (bar->value() > top)
            bar->setValue(top);
        else if (bar->value() < highest)
            bar->setValue(highest);
        break;
    case PositionAtTop:
        bar->setValue(top);
        break;
    case PositionAtBottom:
        bar->setValue(highest);
        break;
    case PositionAtCenter:
        bar->setValue((top + highest) / 2);
        break;
    }
}

QModelIndex RowListView::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    if (rows() == 0)
        return {};
    const int page = qMax(1, viewport()->height() / rowHeight() - 1);
    int row = currentIndex().isValid() ? currentIndex().row() : -1;
    switch (action) {
    case MoveUp:
    case MovePrevious:
        --row;
        break;
    case MoveDown:
    case MoveNext:
        ++row;
        break;
    case MovePageUp:
        row -= page;
        break;
    case MovePageDown:
        row += page;
        break;
    case MoveHome:
        row = 0;
        break;
    case MoveEnd:
        row = rows() - 1;
        break;
    case MoveLeft:
    case MoveRight:
        break;
    }
    return indexOfRow(qBound(0, row, rows() - 1));
}

int RowListView::horizontalOffset() const
{
    return 0;
}

int RowListView::verticalOffset() const
{
    return verticalScrollBar()->value();
}

bool RowListView::isIndexHidden(const QModelIndex &index) const
{
    return index.column() != m_column;
}

void RowListView::setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command)
{
    const QModelIndex first = indexAt(rect.topLeft());
    const QModelIndex last = indexAt(rect.bottomRight());
    QItemSelection selection;
    if (first.isValid() && last.isValid())
        selection.select(first, last);
    selectionModel()->select(selection, command);
}

QRegion RowListView::visualRegionForSelection(const QItemSelection &selection) const
{
    QRegion region;
    for (const QItemSelectionRange &range : selection) {
        const QRect top = visualRect(indexOfRow(range.top()));
        const QRect bottom = visualRect(indexOfRow(range.bottom()));
        region += top.united(bottom) & viewport()->rect();
    }
    return region;
}

void RowListView::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const int first = (event->rect().top() + verticalOffset()) / rowHeight();
    const int last = qMin((event->rect().bottom() + verticalOffset()) / rowHeight(), rows() - 1);
    const QStyleOptionViewItem option = itemOption();
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool focused = hasFocus() || viewport()->hasFocus();
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = indexOfRow(row);
        QStyleOptionViewItem item = option;
        item.rect = visualRect(index);
        item.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
        item.state.setFlag(QStyle::State_HasFocus, focused && index == currentIndex());
        item.state.setFlag(QStyle::State_Enabled, enabled && index.flags() & Qt::ItemIsEnabled);
        style()->drawPrimitive(QStyle::PE_PanelItemViewRow, &item, &painter, this);
        itemDelegate(index)->paint(&painter, item, index);
    }
}

void RowListView::updateGeometries()
{
    QScrollBar *const bar = verticalScrollBar();
    bar->setSingleStep(rowHeight());
    bar->setPageStep(viewport()->height());
    bar->setRange(0, qMax(0, rows() * rowHeight() - viewport()->height()));
    ItemView::updateGeometries();
    viewport()->update();
}

void RowListView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        m_rowHeight = 0;
    ItemView::changeEvent(event);
}

// QAbstractItemView would make the first row current without highlighting it, and Enter would
// choose it.
void RowListView::focusInEvent(QFocusEvent *event)
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}
