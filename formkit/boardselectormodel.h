// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/checklistmodel.h>
#include <hostapi/record.h>

#include <memory>

/// The trading boards of all exchanges, from the host's table "boards": by exchange id, then
/// by board code. As a check list it reports the chosen boards. It does not follow the table:
/// a refresh is a call of populate().
class FORMKIT_EXPORT BoardSelectorModel : public CheckListModel
{
    Q_OBJECT

public:
    /// Beside the display and edit roles, which give the name.
    enum ItemDataRole {
        KeyRole = Qt::UserRole + 1,       ///< "exchange id,board id" (QString)
        StockIdRole = Qt::UserRole + 2,   ///< the exchange id (int)
        BoardIdRole = Qt::UserRole + 3,   ///< the board id (int)
        StockCodeRole = Qt::UserRole + 4, ///< the exchange code (QString)
        BoardCodeRole = Qt::UserRole + 5  ///< the board code (QString)
    };

    /// A row of the list.
    struct Data
    {
        /// Its check, and what the roles give.
        bool checked = true;
        QString name;
        QString boardCode;
        QString stockCode;
        Board board;
    };

    /// Finds the table; does not populate.
    explicit BoardSelectorModel(QObject *parent = nullptr);
    ~BoardSelectorModel() override;

    /// Reads the table again, under its lock; of two boards of one exchange and code the later
    /// read stands first. Reports the check list once, from the event loop. What the host,
    /// filter() or the filter of a proxy throws passes through, with the lock given back and the
    /// rows left as they were, here and in the proxies.
    virtual void populate();
    /// Whether a board is to be listed: one on which positions are kept, if setForPositions()
    /// asks for it, and one of the filter boards, if there are any. Called under the lock.
    virtual bool filter(const Record &record) const;
    /// The row of a board.
    Data read(const Record &record) const;

    /// The table's row of a row of the model, found by its key; a null record when the table
    /// has it no longer, or when there is no such row.
    Record at(int row) const;

    /// The boards to which the list is limited from the next population on; none means all.
    void setFilterBoards(const boardlist &boards);
    /// Limits the list to boards on which positions are kept, from the next population on.
    void setForPositions(bool forPositions);

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

public Q_SLOTS:
    /// Emits boardsChanged() with the state of the check list.
    void sendBoardsChanged();

Q_SIGNALS:
    /// The chosen boards, ascending. `enable` says that some board is not chosen, so that
    /// there is something to filter by. Emitted from the event loop after every population
    /// and after each change of one check (not after all are set at once).
    void boardsChanged(bool enable, Boards keys);

protected:
    int listSize() const override;
    bool isChecked(int row) const override;
    void setChecked(int row, bool checked) override;
    void rowCheckChanged() override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
