// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/flatproxymodel.h>

#include <formkit/rowrange.h>

#include <exception>
#include <functional>
#include <memory>
#include <utility>

class RowOrder;
struct PreparedRows;
struct RowLists;

/// The list that a selector box shows: the rows of a flat source model that the filter
/// accepts, in the order of their display texts, ignoring case (QString::compare(), no
/// collation; equal texts in the order of the source). Made for a million rows: a change of
/// the filter is one model reset and takes time in proportion to the rows shown, and rows are found
/// by text or key without a walk.
///
/// - It does what QSortFilterProxyModel does by mapping functions, data(), match(), sort() of
///   column 0, signals, and filterAcceptsRow(), which a subclass may override.
/// - The rest of QSortFilterProxyModel has no effect: filter patterns and roles, sort roles, case
///   sensitivity of the sort, dynamicSortFilter. sortColumn() and sortOrder() always report
///   column 0, ascending. Rows cannot be inserted, removed or dragged.
/// - A filter that throws leaves the list as it was, and the exception passes. A model of this
///   library that is being populated, or whose checks change, then keeps its old rows too.
/// - Changed cells are shown even if the filter throws. A source of another library that is reset,
/// or
///   whose rows come, go or move, cannot give its old rows back: the list is then empty until the
///   filter next succeeds.
class FORMKIT_EXPORT SelectorProxyModel : public FlatProxyModel
{
    Q_OBJECT

public:
    /// Beside the roles of the source.
    enum ItemDataRole {
        /// A key made of the display text, on which type-ahead completes.
        CompletionRole = Qt::UserRole + 0x1000
    };

    explicit SelectorProxyModel(QObject *parent = nullptr);
    ~SelectorProxyModel() override;

    /// The roles by which rows are looked up. Their data must be texts or integers that change
    /// only when the source is reset.
    void setKeyRoles(const QVector<int> &roles);
    /// Ascending.
    QVector<int> keyRoles() const;

    /// The first row with that text; -1 for none.
    int rowOfText(const QString &text, Qt::CaseSensitivity sensitivity) const;
    /// How many rows have that text, ignoring case.
    int countOfText(const QString &text) const;
    /// The rows whose data of a key role reads as the value does, ignoring case, ascending.
    QVector<int> rowsOfKey(int role, const QVariant &value) const;

    /// Applies the filter again, in one model reset.
    void invalidate();

    void setSourceModel(QAbstractItemModel *source) override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Look-ups of one hit do not walk the list: of a whole text or key from the first row on,
    /// of a beginning of the text, ignoring case, from any row on.
    QModelIndexList match(const QModelIndex &start, int role, const QVariant &value, int hits = 1,
                          Qt::MatchFlags flags = Qt::MatchFlags(Qt::MatchStartsWith |
                                                                Qt::MatchWrap)) const override;
    /// Column 0 sorts by display text, either way; any other column restores the source's
    /// order.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

protected:
    int sourceRow(int row) const override;
    int rowOfSource(int sourceRow) const override;
    /// Whether a row is shown; every row, unless a subclass says otherwise.
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

    /// The range by the model's own name for it.
    using RowRange = ::RowRange;
    /// The source rows outside which filterAcceptsRow() accepts none; the whole source unless a
    /// subclass knows better. It is what makes a narrow filter cheap. Asked again at each rebuild
    /// of the list.
    virtual RowRange candidateRows() const;
    /// Whether filterAcceptsRow() accepts every candidate row, so that it need not be asked: the
    /// list then costs by what it shows. False unless a class knows that it is true of itself
    /// and not of a subclass that filters on.
    virtual bool acceptsCandidates() const;

    /// Changes what filterAcceptsRow() asks for, and applies the filter in one model reset.
    /// `exchange` exchanges the old condition for the new one and, called again, back: that
    /// happens when the filter throws, before the exception passes. It must not throw.
    void changeFilter(const std::function<void()> &exchange);
    /// changeFilter() for one value.
    template <typename T> void setCondition(T &condition, T value)
    {
        changeFilter([&condition, &value] { std::swap(condition, value); });
    }

private:
    struct Private;

    void follow(QAbstractItemModel *source);
    void endRebuild();
    void show(const RowLists &lists);
    RowLists readLists(const PreparedRows *prepared = nullptr) const;
    RowLists filteredLists() const;
    void applyFilter(RowOrder *order) const;
    QVector<int> acceptedRows() const;
    bool accepts(int sourceRow) const;
    void sourceDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                           const QVector<int> &roles);
    std::exception_ptr placeRow(int sourceRow);
    std::exception_ptr placeRows();
    void relayout(RowOrder order, const QVector<int> &rows);
    bool isIndexed(const QModelIndex &start, int role, const QVariant &value, int hits,
                   Qt::MatchFlags flags) const;
    int rowOfWhole(int role, const QVariant &value, Qt::MatchFlags flags) const;

    std::unique_ptr<Private> d;
};
