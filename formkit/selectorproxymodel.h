#pragma once

#include <formkit/formkit_export.h>

#include <QSortFilterProxyModel>

#include <memory>

// The list that a selector box shows: the rows of a flat source model that the filter
// accepts, in the order of their display texts, ignoring case (QString::compare(), no
// collation; equal texts in the order of the source). Made for a million rows: a change of
// the filter is one model reset and costs by the rows that are shown, and rows are found by
// text or key without a walk.
//
// It keeps a mapping of its own beside that of QSortFilterProxyModel. What it shares with the
// base for a user: the mapping functions, data(), match(), sort() of column 0, the signals,
// and filterAcceptsRow(), which a subclass may override. What the base offers beyond is
// inert: filter patterns and roles, sort roles, sort case sensitivity, dynamicSortFilter.
// sortColumn() and sortOrder() always report column 0, ascending. Rows are neither inserted,
// removed nor dragged through it.
class FORMKIT_EXPORT SelectorProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    // Beside the roles of the source.
    enum ItemDataRole {
        // A key made of the display text, on which type-ahead completes.
        CompletionRole = Qt::UserRole + 0x1000
    };

    explicit SelectorProxyModel(QObject *parent = nullptr);
    ~SelectorProxyModel() override;

    // The roles by which rows are looked up. Their data must be texts or integers that change
    // only when the source is reset.
    void setKeyRoles(const QVector<int> &roles);
    // Ascending.
    QVector<int> keyRoles() const;

    // The first row with that text; -1 for none.
    int rowOfText(const QString &text, Qt::CaseSensitivity sensitivity) const;
    // How many rows have that text, ignoring case.
    int countOfText(const QString &text) const;
    // The rows whose data of a key role reads as the value does, ignoring case, ascending.
    QVector<int> rowsOfKey(int role, const QVariant &value) const;

    // Applies the filter anew, in one model reset.
    void invalidate();

    void setSourceModel(QAbstractItemModel *source) override;
    QModelIndex mapToSource(const QModelIndex &proxyIndex) const override;
    QModelIndex mapFromSource(const QModelIndex &sourceIndex) const override;
    QItemSelection mapSelectionToSource(const QItemSelection &selection) const override;
    QItemSelection mapSelectionFromSource(const QItemSelection &selection) const override;

    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    using QObject::parent;
    QModelIndex sibling(int row, int column, const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                       int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QModelIndex buddy(const QModelIndex &index) const override;
    QSize span(const QModelIndex &index) const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;
    bool insertRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    bool insertColumns(int column, int count, const QModelIndex &parent = QModelIndex()) override;
    bool removeRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    bool removeColumns(int column, int count, const QModelIndex &parent = QModelIndex()) override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;
    // Look-ups of one hit do not walk the list: of a whole text or key from the first row on,
    // of a beginning of the text, ignoring case, from any row on.
    QModelIndexList match(const QModelIndex &start, int role, const QVariant &value, int hits = 1,
                          Qt::MatchFlags flags = Qt::MatchFlags(Qt::MatchStartsWith |
                                                                Qt::MatchWrap)) const override;
    // Column 0 sorts by display text, either way; any other column restores the source's
    // order.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

protected:
    // Whether a row is shown; every row, unless a subclass says otherwise.
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

    // A run of source rows, `first` to `last` - 1, outside which filterAcceptsRow() accepts
    // none; the whole source unless a subclass knows better. It is what makes a narrow filter
    // cheap.
    struct RowRange
    {
        // The first row, and the one behind the last.
        int first;
        int last;
    };
    // Asked anew at each rebuild of the list.
    virtual RowRange candidateRows() const;

private:
    struct Mapping;

    void beginRebuild();
    void endRebuild();
    void rebuild();
    void relayout();
    void sourceDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                           const QVector<int> &roles);
    void moveInSourceOrder(int sourceRow);
    bool staysInPlace(int sourceRow) const;
    bool isBetweenNeighbours(const QVector<int> &rows, int position, bool ascending) const;
    QVector<int> acceptedRows() const;
    QVector<int> inOrder(QVector<int> accepted) const;
    const QVector<int> &sourceOrder() const;
    QString sourceText(int sourceRow) const;
    QString text(int row) const;
    int firstNotBefore(const QString &text, bool orEqual) const;
    int rowStartingWith(const QString &beginning, int from, bool wrap) const;

    std::unique_ptr<Mapping> m;
};
