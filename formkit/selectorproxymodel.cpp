#include "selectorproxymodel.h"

#include "foldedtext_p.h"
#include "rowindex_p.h"

#include <QItemSelection>
#include <QMap>
#include <QSize>

#include <algorithm>

namespace {

bool isInteger(const QVariant &value)
{
    return value.userType() == QMetaType::Int || value.userType() == QMetaType::LongLong;
}

} // namespace

struct SelectorProxyModel::Mapping
{
    enum Order { Source, Ascending, Descending };

    // Source rows by proxy row.
    QVector<int> shown;
    // Proxy rows by source row, less firstInverse; -1 for rows that are not shown. Made when
    // it is first asked for.
    mutable QVector<int> inverse;
    mutable int firstInverse = 0;
    // All source rows in ascending order of their texts, while it is known, and the reverse:
    // places in that order by source row.
    mutable QVector<int> sourceOrder;
    mutable QVector<int> sourcePlaces;

    QMap<int, RowIndex> keys;
    Order order = Ascending;

    void setShown(const QVector<int> &rows)
    {
        shown = rows;
        // clear() would first copy what is shared, and then keep the room for it.
        inverse = {};
    }

    int proxyRow(int sourceRow) const
    {
        if (inverse.isEmpty() && !shown.isEmpty())
            invert();
        return inverse.value(sourceRow - firstInverse, -1);
    }

    void invert() const
    {
        if (shown.constData() == sourceOrder.constData()) {
            firstInverse = 0;
            inverse = sourcePlaces;
        } else {
            const auto ends = std::minmax_element(shown.begin(), shown.end());
            firstInverse = *ends.first;
            inverse.fill(-1, *ends.second - firstInverse + 1);
            for (int row = 0; row < shown.size(); ++row)
                inverse[shown.at(row) - firstInverse] = row;
        }
    }
};

SelectorProxyModel::SelectorProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent), m(std::make_unique<Mapping>())
{
    QSortFilterProxyModel::sort(0, Qt::AscendingOrder);
}

SelectorProxyModel::~SelectorProxyModel() = default;

void SelectorProxyModel::setKeyRoles(const QVector<int> &roles)
{
    m->keys.clear();
    for (const int role : roles)
        m->keys.insert(role, sourceModel() ? RowIndex(sourceModel(), role) : RowIndex());
}

QVector<int> SelectorProxyModel::keyRoles() const
{
    return QVector<int>(m->keys.keyBegin(), m->keys.keyEnd());
}

void SelectorProxyModel::setSourceModel(QAbstractItemModel *source)
{
    if (source == sourceModel())
        return;
    beginResetModel();
    if (sourceModel())
        sourceModel()->disconnect(this);
    // Past QSortFilterProxyModel, whose own mapping would come to life.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    QAbstractProxyModel::setSourceModel(source);
    if (source) {
        const auto begin = [this] { beginRebuild(); };
        const auto end = [this] { endRebuild(); };
        using Model = QAbstractItemModel;
        connect(source, &Model::modelAboutToBeReset, this, begin);
        connect(source, &Model::modelReset, this, end);
        connect(source, &Model::rowsAboutToBeInserted, this, begin);
        connect(source, &Model::rowsInserted, this, end);
        connect(source, &Model::rowsAboutToBeRemoved, this, begin);
        connect(source, &Model::rowsRemoved, this, end);
        connect(source, &Model::rowsAboutToBeMoved, this, begin);
        connect(source, &Model::rowsMoved, this, end);
        connect(source, &Model::layoutAboutToBeChanged, this, begin);
        connect(source, &Model::layoutChanged, this, end);
        connect(source, &Model::columnsAboutToBeInserted, this, begin);
        connect(source, &Model::columnsInserted, this, end);
        connect(source, &Model::columnsAboutToBeRemoved, this, begin);
        connect(source, &Model::columnsRemoved, this, end);
        connect(source, &Model::dataChanged, this, &SelectorProxyModel::sourceDataChanged);
        connect(source, &Model::headerDataChanged, this, &Model::headerDataChanged);
        connect(source, &QObject::destroyed, this, [this] {
            beginResetModel();
            m->setShown({});
            m->sourceOrder = {};
            setKeyRoles(keyRoles());
            endResetModel();
        });
    }
    rebuild();
    endResetModel();
}

void SelectorProxyModel::beginRebuild()
{
    beginResetModel();
}

void SelectorProxyModel::endRebuild()
{
    rebuild();
    endResetModel();
}

void SelectorProxyModel::rebuild()
{
    m->sourceOrder = {};
    // Now rather than when the filter is first cleared: that is to cost no sort.
    sourceOrder();
    setKeyRoles(keyRoles());
    m->setShown(inOrder(acceptedRows()));
}

void SelectorProxyModel::invalidate()
{
    beginResetModel();
    m->setShown(inOrder(acceptedRows()));
    endResetModel();
}

bool SelectorProxyModel::filterAcceptsRow(int, const QModelIndex &) const
{
    return true;
}

SelectorProxyModel::RowRange SelectorProxyModel::candidateRows() const
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

// Takes rows in the source's order.
QVector<int> SelectorProxyModel::inOrder(QVector<int> accepted) const
{
    if (m->order == Mapping::Source)
        return accepted;

    QVector<int> ordered;
    const int sourceRows = sourceModel() ? sourceModel()->rowCount() : 0;
    if (accepted.size() == sourceRows) {
        ordered = sourceOrder();
    } else if (accepted.size() > sourceRows / 8) {
        QVector<bool> isAccepted(sourceRows, false);
        for (const int row : qAsConst(accepted))
            isAccepted[row] = true;
        ordered.reserve(accepted.size());
        for (const int row : sourceOrder()) {
            if (isAccepted.at(row))
                ordered.append(row);
        }
    } else {
        const QVector<int> &order = sourceOrder();
        ordered.reserve(accepted.size());
        for (const int row : qAsConst(accepted))
            ordered.append(m->sourcePlaces.at(row));
        std::sort(ordered.begin(), ordered.end());
        for (int &place : ordered)
            place = order.at(place);
    }
    if (m->order == Mapping::Descending) {
        std::reverse(ordered.begin(), ordered.end());
        for (auto run = ordered.begin(); run != ordered.end();) {
            const QString runText = sourceText(*run);
            const auto next = std::find_if(run, ordered.end(), [&](int row) {
                return sourceText(row).compare(runText, Qt::CaseInsensitive) != 0;
            });
            std::reverse(run, next);
            run = next;
        }
    }
    return ordered;
}

const QVector<int> &SelectorProxyModel::sourceOrder() const
{
    if (m->sourceOrder.isEmpty() && sourceModel()) {
        QVector<QString> texts(sourceModel()->rowCount());
        for (int row = 0; row < texts.size(); ++row)
            texts[row] = sourceText(row);
        m->sourceOrder = FoldedText::ascending(texts);
        m->sourcePlaces = QVector<int>(texts.size());
        for (int place = 0; place < texts.size(); ++place)
            m->sourcePlaces[m->sourceOrder.at(place)] = place;
    }
    return m->sourceOrder;
}

// Brings a source row whose text may have changed to its place, be it shown or not.
void SelectorProxyModel::moveInSourceOrder(int sourceRow)
{
    QVector<int> &order = m->sourceOrder;
    if (order.isEmpty())
        return;
    const auto isBefore = [this](int a, int b) {
        const int comparison = sourceText(a).compare(sourceText(b), Qt::CaseInsensitive);
        return comparison != 0 ? comparison < 0 : a < b;
    };
    const int from = m->sourcePlaces.at(sourceRow);
    if (isBetweenNeighbours(order, from, true))
        return;
    order.remove(from);
    const auto next = std::lower_bound(order.begin(), order.end(), sourceRow, isBefore);
    const int to = int(next - order.begin());
    order.insert(to, sourceRow);
    for (int place = qMin(from, to); place <= qMax(from, to); ++place)
        m->sourcePlaces[order.at(place)] = place;
}

// True when a changed row is shown or hidden as it was, between neighbours that it still
// belongs between.
bool SelectorProxyModel::staysInPlace(int sourceRow) const
{
    const int row = m->proxyRow(sourceRow);
    const RowRange range = candidateRows();
    const bool accepted = sourceRow >= range.first && sourceRow < range.last &&
                          filterAcceptsRow(sourceRow, QModelIndex());
    if (accepted != (row >= 0))
        return false;
    if (row < 0 || m->order == Mapping::Source)
        return true;
    const bool ascending = m->order == Mapping::Ascending;
    return isBetweenNeighbours(m->shown, row, ascending);
}

// Whether the row at a position of a list of source rows belongs between those beside it.
bool SelectorProxyModel::isBetweenNeighbours(const QVector<int> &rows, int position,
                                             bool ascending) const
{
    const auto inOrder = [&](int upper, int lower) {
        if (upper < 0 || lower >= rows.size())
            return true;
        const int order =
            sourceText(rows.at(upper)).compare(sourceText(rows.at(lower)), Qt::CaseInsensitive);
        return order == 0 ? rows.at(upper) < rows.at(lower) : (order < 0) == ascending;
    };
    return inOrder(position - 1, position) && inOrder(position, position + 1);
}

void SelectorProxyModel::sourceDataChanged(const QModelIndex &topLeft,
                                           const QModelIndex &bottomRight,
                                           const QVector<int> &roles)
{
    if (!topLeft.isValid() || !bottomRight.isValid())
        return;
    const bool isOneRow = topLeft.row() == bottomRight.row();
    if (isOneRow)
        moveInSourceOrder(topLeft.row());
    else
        m->sourceOrder = {};
    if (!isOneRow || !staysInPlace(topLeft.row())) {
        relayout();
        if (!isOneRow && !m->shown.isEmpty())
            emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), roles);
    }
    const int row = isOneRow ? m->proxyRow(topLeft.row()) : -1;
    if (row >= 0)
        emit dataChanged(index(row, topLeft.column()), index(row, bottomRight.column()), roles);
}

// Brings the rows into their order after a change of their texts: as a change of the layout
// when the same rows are shown, otherwise as a reset.
void SelectorProxyModel::relayout()
{
    const QVector<int> accepted = acceptedRows();
    const bool sameRows = accepted.size() == m->shown.size() &&
                          std::all_of(accepted.begin(), accepted.end(),
                                      [this](int row) { return m->proxyRow(row) >= 0; });
    if (!sameRows) {
        beginResetModel();
        m->setShown(inOrder(accepted));
        endResetModel();
        return;
    }
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList from = persistentIndexList();
    QVector<int> sourceRows;
    for (const QModelIndex &proxyIndex : from)
        sourceRows.append(m->shown.at(proxyIndex.row()));
    m->setShown(inOrder(accepted));
    QModelIndexList to;
    for (int i = 0; i < from.size(); ++i)
        to.append(index(m->proxyRow(sourceRows.at(i)), from.at(i).column()));
    changePersistentIndexList(from, to);
    emit layoutChanged({}, VerticalSortHint);
}

QString SelectorProxyModel::sourceText(int sourceRow) const
{
    return sourceModel()->index(sourceRow, 0).data().toString();
}

QString SelectorProxyModel::text(int row) const
{
    return sourceText(m->shown.at(row));
}

// The first row whose text is not before the given one in the order shown; with `orEqual`,
// the first behind the rows that are equal to it.
int SelectorProxyModel::firstNotBefore(const QString &wanted, bool orEqual) const
{
    int first = 0;
    int last = m->shown.size();
    while (first < last) {
        const int middle = first + (last - first) / 2;
        int order = text(middle).compare(wanted, Qt::CaseInsensitive);
        if (m->order == Mapping::Descending)
            order = -order;
        if (order < 0 || (orEqual && order == 0))
            first = middle + 1;
        else
            last = middle;
    }
    return first;
}

int SelectorProxyModel::rowOfText(const QString &wanted, Qt::CaseSensitivity sensitivity) const
{
    const bool sorted = m->order != Mapping::Source;
    const int last = sorted ? firstNotBefore(wanted, true) : m->shown.size();
    for (int row = sorted ? firstNotBefore(wanted, false) : 0; row < last; ++row) {
        if (text(row).compare(wanted, sensitivity) == 0)
            return row;
    }
    return -1;
}

// The first row from one on that starts with a text, ignoring case; such rows stand together.
int SelectorProxyModel::rowStartingWith(const QString &beginning, int from, bool wrap) const
{
    const int first = firstNotBefore(beginning, false);
    const auto starts = [&](int row) {
        return row < m->shown.size() && text(row).startsWith(beginning, Qt::CaseInsensitive);
    };
    if (!starts(first))
        return -1;
    if (from > first && starts(from))
        return from;
    return from <= first || wrap ? first : -1;
}

int SelectorProxyModel::countOfText(const QString &wanted) const
{
    if (m->order != Mapping::Source)
        return firstNotBefore(wanted, true) - firstNotBefore(wanted, false);
    int count = 0;
    for (int row = 0; row < m->shown.size(); ++row)
        count += text(row).compare(wanted, Qt::CaseInsensitive) == 0;
    return count;
}

QVector<int> SelectorProxyModel::rowsOfKey(int role, const QVariant &value) const
{
    QVector<int> rows;
    const auto key = m->keys.constFind(role);
    if (key != m->keys.constEnd()) {
        const QVector<int> sourceRows = key->rows(value);
        for (const int sourceRow : sourceRows) {
            if (m->proxyRow(sourceRow) >= 0)
                rows.append(m->proxyRow(sourceRow));
        }
        std::sort(rows.begin(), rows.end());
    }
    return rows;
}

QModelIndexList SelectorProxyModel::match(const QModelIndex &start, int role, const QVariant &value,
                                          int hits, Qt::MatchFlags flags) const
{
    const auto type = flags & 0x0f;
    if (type == Qt::MatchStartsWith && role == Qt::DisplayRole && hits == 1 && start.isValid() &&
        start.column() == 0 && !(flags & Qt::MatchCaseSensitive) &&
        m->order == Mapping::Ascending) {
        const int row = rowStartingWith(value.toString(), start.row(), flags & Qt::MatchWrap);
        return row < 0 ? QModelIndexList() : QModelIndexList{index(row, 0)};
    }
    const bool wholeText = type == Qt::MatchExactly || type == Qt::MatchFixedString;
    const bool indexed = start.row() == 0 && start.column() == 0 && hits == 1 && wholeText;
    const bool asText = type == Qt::MatchFixedString || value.userType() == QMetaType::QString;
    // Of texts a number equals several, "7" and "07".
    const bool asNumber = isInteger(value) && isInteger(data(index(0, 0), role));
    const bool isDisplay = role == Qt::DisplayRole && asText;
    const bool isKey = m->keys.contains(role) && (asText || asNumber);
    if (!indexed || !(isDisplay || isKey))
        return QSortFilterProxyModel::match(start, role, value, hits, flags);

    const bool exact = type == Qt::MatchExactly || flags & Qt::MatchCaseSensitive;
    const Qt::CaseSensitivity sensitivity = exact ? Qt::CaseSensitive : Qt::CaseInsensitive;
    if (isDisplay) {
        const int row = rowOfText(value.toString(), sensitivity);
        return row < 0 ? QModelIndexList() : QModelIndexList{index(row, 0)};
    }
    const QVector<int> keyRows = rowsOfKey(role, value);
    for (const int row : keyRows) {
        const QVariant key = data(index(row, 0), role);
        const bool equals = type == Qt::MatchExactly
                                ? value == key
                                : key.toString().compare(value.toString(), sensitivity) == 0;
        if (equals)
            return {index(row, 0)};
    }
    return {};
}

void SelectorProxyModel::sort(int column, Qt::SortOrder order)
{
    const Mapping::Order wanted = column != 0                   ? Mapping::Source
                                  : order == Qt::AscendingOrder ? Mapping::Ascending
                                                                : Mapping::Descending;
    if (wanted == m->order)
        return;
    m->order = wanted;
    relayout();
}

QModelIndex SelectorProxyModel::mapToSource(const QModelIndex &proxyIndex) const
{
    if (!sourceModel() || !proxyIndex.isValid() || proxyIndex.model() != this ||
        proxyIndex.row() >= m->shown.size())
        return {};
    return sourceModel()->index(m->shown.at(proxyIndex.row()), proxyIndex.column());
}

QModelIndex SelectorProxyModel::mapFromSource(const QModelIndex &sourceIndex) const
{
    if (!sourceIndex.isValid() || sourceIndex.model() != sourceModel())
        return {};
    const int row = m->proxyRow(sourceIndex.row());
    return row < 0 ? QModelIndex() : index(row, sourceIndex.column());
}

QItemSelection SelectorProxyModel::mapSelectionToSource(const QItemSelection &selection) const
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    return QAbstractProxyModel::mapSelectionToSource(selection);
}

QItemSelection SelectorProxyModel::mapSelectionFromSource(const QItemSelection &selection) const
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    return QAbstractProxyModel::mapSelectionFromSource(selection);
}

QModelIndex SelectorProxyModel::index(int row, int column, const QModelIndex &parent) const
{
    return hasIndex(row, column, parent) ? createIndex(row, column) : QModelIndex();
}

QModelIndex SelectorProxyModel::parent(const QModelIndex &) const
{
    return {};
}

QModelIndex SelectorProxyModel::sibling(int row, int column, const QModelIndex &) const
{
    return index(row, column);
}

int SelectorProxyModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m->shown.size();
}

int SelectorProxyModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() || !sourceModel() ? 0 : sourceModel()->columnCount();
}

bool SelectorProxyModel::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}

QVariant SelectorProxyModel::data(const QModelIndex &index, int role) const
{
    const QModelIndex sourceIndex = mapToSource(index);
    if (!sourceIndex.isValid())
        return {};
    if (role == CompletionRole)
        return FoldedText::completionKey(sourceIndex.data().toString());
    return sourceIndex.data(role);
}

bool SelectorProxyModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const QModelIndex sourceIndex = mapToSource(index);
    if (!sourceModel() || index.isValid() != sourceIndex.isValid())
        return false;
    return sourceModel()->setData(sourceIndex, value, role);
}

QVariant SelectorProxyModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (!sourceModel())
        return {};
    if (orientation == Qt::Vertical)
        section = m->shown.value(section, -1);
    return section < 0 ? QVariant() : sourceModel()->headerData(section, orientation, role);
}

bool SelectorProxyModel::setHeaderData(int section, Qt::Orientation orientation,
                                       const QVariant &value, int role)
{
    if (orientation == Qt::Vertical)
        section = m->shown.value(section, -1);
    return sourceModel() && section >= 0 &&
           sourceModel()->setHeaderData(section, orientation, value, role);
}

Qt::ItemFlags SelectorProxyModel::flags(const QModelIndex &index) const
{
    const QModelIndex sourceIndex = mapToSource(index);
    return sourceIndex.isValid() ? sourceModel()->flags(sourceIndex) : Qt::NoItemFlags;
}

QModelIndex SelectorProxyModel::buddy(const QModelIndex &index) const
{
    return index;
}

QSize SelectorProxyModel::span(const QModelIndex &index) const
{
    const QModelIndex sourceIndex = mapToSource(index);
    return sourceIndex.isValid() ? sourceModel()->span(sourceIndex) : QSize(1, 1);
}

QMimeData *SelectorProxyModel::mimeData(const QModelIndexList &indexes) const
{
    QModelIndexList sourceIndexes;
    for (const QModelIndex &proxyIndex : indexes)
        sourceIndexes << mapToSource(proxyIndex);
    return sourceModel() ? sourceModel()->mimeData(sourceIndexes) : nullptr;
}

bool SelectorProxyModel::dropMimeData(const QMimeData *, Qt::DropAction, int, int,
                                      const QModelIndex &)
{
    return false;
}

bool SelectorProxyModel::insertRows(int, int, const QModelIndex &)
{
    return false;
}

bool SelectorProxyModel::insertColumns(int, int, const QModelIndex &)
{
    return false;
}

bool SelectorProxyModel::removeRows(int, int, const QModelIndex &)
{
    return false;
}

bool SelectorProxyModel::removeColumns(int, int, const QModelIndex &)
{
    return false;
}

bool SelectorProxyModel::canFetchMore(const QModelIndex &) const
{
    return false;
}

void SelectorProxyModel::fetchMore(const QModelIndex &) {}
