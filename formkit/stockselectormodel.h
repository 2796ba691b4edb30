// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/checklistmodel.h>
#include <hostapi/boardid.h>

#include <QTimer>

#include <memory>

class Record;

/// The exchanges of the host's table "stocks", by exchange code. As a check list it reports
/// the chosen exchanges. It does not follow the table: a refresh is a call of populate().
class FORMKIT_EXPORT StockSelectorModel : public CheckListModel
{
    Q_OBJECT

public:
    /// Beside the display and edit roles, which give the name.
    enum ItemDataRole {
        IdRole = Qt::UserRole + 1,  ///< the exchange id (int)
        CodeRole = Qt::UserRole + 2 ///< the exchange code (QString)
    };

    /// A row of the list.
    struct Data
    {
        /// Its check, and what the roles give.
        bool checked = true;
        qint32 id = 0;
        QString name;
        QString code;
    };

    /// Finds the table; does not populate.
    explicit StockSelectorModel(QObject *parent = nullptr);
    ~StockSelectorModel() override;

    /// Reads the table again, under its lock. Rows are sorted by code (case-sensitive); of two
    /// with one code the later read stands first. What the host, filter() or the filter of a proxy
    /// throws passes through, with the lock given back and the rows left as they were, here and in
    /// the proxies.
    virtual void populate();
    /// Whether an exchange is to be listed; every one, unless a subclass drops some. Called
    /// under the table's lock.
    virtual bool filter(const Record &record) const;
    /// The row of an exchange.
    Data read(const Record &record) const;

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

public Q_SLOTS:
    /// Emits stocksChanged() with the state of the check list.
    void sendStocksChanged();

Q_SIGNALS:
    /// The chosen exchanges, ascending. `enable` says that some exchange is not chosen, so
    /// that there is something to filter by.
    void stocksChanged(bool enable, Stocks keys);

protected:
    int listSize() const override;
    bool isChecked(int row) const override;
    void setChecked(int row, bool checked) override;

    /// A child object. Calls sendStocksChanged() when it times out. The model never starts it: its
    /// owner does, or calls the slot.
    QTimer m_timer{this};

private:
    struct Private;
    std::unique_ptr<Private> d;
};
