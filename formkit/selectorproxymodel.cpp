// SPDX-License-Identifier: BSD-3-Clause
#include "selectorproxymodel.h"

#include "foldedtext_p.h"
#include "modelrefresh_p.h"
#include "rowindex_p.h"
#include "roworder_p.h"

#include <QMap>
#include <QScopeGuard>

#include <algorithm>
#include <exception>

namespace {

bool isInteger(const QVariant &value)
{
    return value.userType() == QMetaType::Int || value.userType() == QMetaType::LongLong;
}

RowOrder orderOf(const QAbstractItemModel *source)
{
    if (!source)
        return {};
    return RowOrder(source->rowCount(),
                    [source](int row) { return source->index(row, 0).data().toString(); });
}

RowIndex indexOfRole(const QAbstractItemModel *source, int role)
{
    if (!source)
        return {};
    return RowIndex(source->rowCount(),
                    [source, role](int row) { return source->index(row, 0).data(role); });
}

std::exception_ptr failureOf(const std::function<void()> &judge)
{
    try {
        judge();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

} // namespace

// What is known of a source. A copy is cheap.
struct SelectorProxyModel::Lists
{
    RowOrder order;
    QMap<int, RowIndex> keys;
};

struct SelectorProxyModel::Private
{
    Lists lists;
    // Those of the new rows of a source whose reset has not ended yet.
    std::unique_ptr<Lists> prepared;
    // The lists are empty because the filter has thrown.
    bool isUnknown = false;
    QVector<int> keyRoles;
    RowOrder::Direction direction = RowOrder::Ascending;
};

SelectorProxyModel::SelectorProxyModel(QObject *parent)
    : FlatProxyModel(parent), d(std::make_unique<Private>())
{
    QSortFilterProxyModel::sort(0, Qt::AscendingOrder);
}

SelectorProxyModel::~SelectorProxyModel() = default;

void SelectorProxyModel::setKeyRoles(const QVector<int> &roles)
{
    QMap<int, RowIndex> keys;
    for (const int role : roles)
        keys.insert(role, indexOfRole(sourceModel(), role));
    d->keyRoles = QVector<int>(keys.keyBegin(), keys.keyEnd());
    d->lists.keys = keys;
}

QVector<int> SelectorProxyModel::keyRoles() const
{
    return d->keyRoles;
}

void SelectorProxyModel::setSourceModel(QAbstractItemModel *source)
{
    QAbstractItemModel *const before = sourceModel();
    if (source == before)
        return;
    beginResetModel();
    // Past QSortFilterProxyModel, whose own mapping would come to life.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    QAbstractProxyModel::setSourceModel(source);
    try {
        d->lists = readLists();
    } catch (...) {
        // NOLINTNEXTLINE(bugprone-parent-virtual-call)
        QAbstractProxyModel::setSourceModel(before);
        endResetModel();
        throw;
    }
    if (before) {
        before->disconnect(this);
        if (auto *refresh = ModelRefresh::of(before))
            refresh->disconnect(this);
    }
    if (source)
        follow(source);
    d->isUnknown = false;
    endResetModel();
}

void SelectorProxyModel::follow(QAbstractItemModel *source)
{
    using Model = QAbstractItemModel;
    const auto rebuild = [this, source](auto begins, auto hasEnded) {
        connect(source, begins, this, [this] { beginResetModel(); });
        connect(source, hasEnded, this, [this] { endRebuild(); });
    };
    rebuild(&Model::modelAboutToBeReset, &Model::modelReset);
    rebuild(&Model::rowsAboutToBeInserted, &Model::rowsInserted);
    rebuild(&Model::rowsAboutToBeRemoved, &Model::rowsRemoved);
    rebuild(&Model::rowsAboutToBeMoved, &Model::rowsMoved);
    rebuild(&Model::layoutAboutToBeChanged, &Model::layoutChanged);
    rebuild(&Model::columnsAboutToBeInserted, &Model::columnsInserted);
    rebuild(&Model::columnsAboutToBeRemoved, &Model::columnsRemoved);
    connect(source, &Model::dataChanged, this, &SelectorProxyModel::sourceDataChanged);
    connect(source, &Model::headerDataChanged, this, &Model::headerDataChanged);
    connect(source, &QObject::destroyed, this, [this] { show({}); });
    if (auto *refresh = ModelRefresh::of(source)) {
        connect(refresh, &ModelRefresh::rowsRead, this,
                [this] { d->prepared = std::make_unique<Lists>(readLists()); });
    }
}

void SelectorProxyModel::endRebuild()
{
    const std::unique_ptr<Lists> prepared = std::move(d->prepared);
    const ModelRefresh *const refresh = ModelRefresh::of(sourceModel());
    try {
        if (!refresh || !refresh->isUndone()) {
            d->lists = prepared ? *prepared : readLists();
            d->isUnknown = false;
        }
    } catch (...) {
        d->lists = {};
        d->isUnknown = true;
        endResetModel();
        throw;
    }
    endResetModel();
}

void SelectorProxyModel::show(const Lists &lists)
{
    beginResetModel();
    d->lists = lists;
    d->isUnknown = false;
    endResetModel();
}

void SelectorProxyModel::invalidate()
{
    show(filteredLists());
}

void SelectorProxyModel::changeFilter(const std::function<void()> &exchange)
{
    exchange();
    auto undo = qScopeGuard(exchange);
    const Lists lists = filteredLists();
    undo.dismiss();
    show(lists);
}

// Those of the rows as they stand in the source.
SelectorProxyModel::Lists SelectorProxyModel::readLists() const
{
    Lists lists;
    lists.order = orderOf(sourceModel());
    lists.order.show(acceptedRows(), d->direction);
    for (const int role : std::as_const(d->keyRoles))
        lists.keys.insert(role, indexOfRole(sourceModel(), role));
    return lists;
}

// The same rows with another answer of the filter.
SelectorProxyModel::Lists SelectorProxyModel::filteredLists() const
{
    if (d->isUnknown)
        return readLists();
    Lists lists = d->lists;
    lists.order.show(acceptedRows(), d->direction);
    return lists;
}

bool SelectorProxyModel::filterAcceptsRow(int, const QModelIndex &) const
{
    return true;
}

RowRange SelectorProxyModel::candidateRows() const
{
    return {0, sourceModel() ? sourceModel()->rowCount() : 0};
}

QVector<int> SelectorProxyModel::acceptedRows() const
{
    const RowRange range = candidateRows();
    QVector<int> rows;
    rows.reserve(qMax(0, range.last - range.first));
    for (int row = range.first; row < range.last; ++row) {
        if (filterAcceptsRow(row, QModelIndex()))
            rows.append(row);
    }
    return rows;
}

bool SelectorProxyModel::accepts(int sourceRow) const
{
    const RowRange range = candidateRows();
    return sourceRow >= range.first && sourceRow < range.last &&
           filterAcceptsRow(sourceRow, QModelIndex());
}

// What the filter throws passes on after the change has been shown.
void SelectorProxyModel::sourceDataChanged(const QModelIndex &topLeft,
                                           const QModelIndex &bottomRight,
                                           const QVector<int> &roles)
{
    if (!topLeft.isValid() || !bottomRight.isValid())
        return;
    if (d->isUnknown)
        return invalidate();
    const bool isOneRow = topLeft.row() == bottomRight.row();
    const std::exception_ptr failure = isOneRow ? placeRow(topLeft.row()) : placeRows();
    const int row = isOneRow ? d->lists.order.positionOf(topLeft.row()) : 0;
    if (isOneRow && row >= 0)
        Q_EMIT dataChanged(index(row, topLeft.column()), index(row, bottomRight.column()), roles);
    else if (!isOneRow && rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), roles);
    if (failure)
        std::rethrow_exception(failure);
}

// Brings a source row that has changed to its place, be it shown or not. When the filter throws,
// the same rows are shown.
std::exception_ptr SelectorProxyModel::placeRow(int sourceRow)
{
    RowOrder &order = d->lists.order;
    order.move(sourceRow);
    const bool isShown = order.positionOf(sourceRow) >= 0;
    bool isAccepted = isShown;
    const std::exception_ptr failure = failureOf([&] { isAccepted = accepts(sourceRow); });
    if (isAccepted == isShown && (!isShown || order.isInPlace(sourceRow)))
        return failure;
    QVector<int> rows = order.rows();
    const auto at = std::lower_bound(rows.begin(), rows.end(), sourceRow);
    if (isAccepted && !isShown)
        rows.insert(at, sourceRow);
    else if (!isAccepted)
        rows.erase(at);
    relayout(order, rows);
    return failure;
}

// The same for all rows.
std::exception_ptr SelectorProxyModel::placeRows()
{
    QVector<int> rows = d->lists.order.rows();
    const std::exception_ptr failure = failureOf([&] { rows = acceptedRows(); });
    relayout(orderOf(sourceModel()), rows);
    return failure;
}

// Shows rows in an order: as a change of the layout when they are those shown now, otherwise as a
// reset.
void SelectorProxyModel::relayout(RowOrder order, const QVector<int> &rows)
{
    const RowOrder before = d->lists.order;
    order.show(rows, d->direction);
    if (rows != before.rows()) {
        beginResetModel();
        d->lists.order = order;
        endResetModel();
        return;
    }
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    d->lists.order = order;
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    for (const QModelIndex &proxyIndex : from) {
        const int row = order.positionOf(before.rowAt(proxyIndex.row()));
        to.append(index(row, proxyIndex.column()));
    }
    changePersistentIndexList(from, to);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

int SelectorProxyModel::rowOfText(const QString &text, Qt::CaseSensitivity sensitivity) const
{
    return d->lists.order.positionOfText(text, sensitivity);
}

int SelectorProxyModel::countOfText(const QString &text) const
{
    return d->lists.order.countOfText(text);
}

QVector<int> SelectorProxyModel::rowsOfKey(int role, const QVariant &value) const
{
    return d->lists.order.positionsOf(d->lists.keys.value(role).rows(value));
}

QModelIndexList SelectorProxyModel::match(const QModelIndex &start, int role, const QVariant &value,
                                          int hits, Qt::MatchFlags flags) const
{
    const bool isBeginning = (flags & 0x0f) == Qt::MatchStartsWith && role == Qt::DisplayRole &&
                             hits == 1 && start.isValid() && start.column() == 0 &&
                             !(flags & Qt::MatchCaseSensitive);
    int row = -1;
    if (isBeginning && d->direction == RowOrder::Ascending)
        row = d->lists.order.positionStartingWith(value.toString(), start.row(),
                                                  flags & Qt::MatchWrap);
    else if (isIndexed(start, role, value, hits, flags))
        row = rowOfWhole(role, value, flags);
    else
        return FlatProxyModel::match(start, role, value, hits, flags);
    return row < 0 ? QModelIndexList() : QModelIndexList{index(row, 0)};
}

// Whether a look-up is one of a whole text or key.
bool SelectorProxyModel::isIndexed(const QModelIndex &start, int role, const QVariant &value,
                                   int hits, Qt::MatchFlags flags) const
{
    const auto type = flags & 0x0f;
    const bool isWhole = type == Qt::MatchExactly || type == Qt::MatchFixedString;
    if (start.row() != 0 || start.column() != 0 || hits != 1 || !isWhole)
        return false;
    const bool asText = type == Qt::MatchFixedString || value.userType() == QMetaType::QString;
    if (role == Qt::DisplayRole)
        return asText;
    // Of texts a number equals several, "7" and "07".
    const bool asNumber = isInteger(value) && isInteger(data(index(0, 0), role));
    return d->lists.keys.contains(role) && (asText || asNumber);
}

int SelectorProxyModel::rowOfWhole(int role, const QVariant &value, Qt::MatchFlags flags) const
{
    const bool isExact = (flags & 0x0f) == Qt::MatchExactly;
    const Qt::CaseSensitivity sensitivity =
        isExact || flags & Qt::MatchCaseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
    if (role == Qt::DisplayRole)
        return rowOfText(value.toString(), sensitivity);
    const QVector<int> rows = rowsOfKey(role, value);
    const auto row = std::find_if(rows.begin(), rows.end(), [&](int candidate) {
        const QVariant key = data(index(candidate, 0), role);
        return isExact ? value == key : key.toString().compare(value.toString(), sensitivity) == 0;
    });
    return row == rows.end() ? -1 : *row;
}

void SelectorProxyModel::sort(int column, Qt::SortOrder order)
{
    const RowOrder::Direction wanted = column != 0                   ? RowOrder::AsRead
                                       : order == Qt::AscendingOrder ? RowOrder::Ascending
                                                                     : RowOrder::Descending;
    if (wanted == d->direction)
        return;
    d->direction = wanted;
    relayout(d->lists.order, d->lists.order.rows());
}

int SelectorProxyModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : d->lists.order.count();
}

QVariant SelectorProxyModel::data(const QModelIndex &index, int role) const
{
    if (role != CompletionRole)
        return FlatProxyModel::data(index, role);
    const QModelIndex sourceIndex = mapToSource(index);
    return sourceIndex.isValid() ? FoldedText::completionKey(sourceIndex.data().toString())
                                 : QVariant();
}

int SelectorProxyModel::sourceRow(int row) const
{
    return d->lists.order.rowAt(row);
}

int SelectorProxyModel::rowOfSource(int sourceRow) const
{
    return d->lists.order.positionOf(sourceRow);
}
