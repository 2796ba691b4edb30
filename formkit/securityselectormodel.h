// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>
#include <formkit/rowrange.h>
#include <hostapi/boardid.h>

#include <QAbstractListModel>
#include <QVector>

#include <memory>

class ModelRefresh;
class Record;
class Table;
class ValueFilter;

/// The securities of the trading sessions that are open, from the host's table "securities":
/// by exchange code, board code and name (each case-sensitive). When the first loaded plug-in
/// that offers IDecoder announces new sessions, the list is read anew.
class FORMKIT_EXPORT SecuritySelectorModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// The display and edit roles give the data of the default data role.
    enum ItemDataRole {
        StockCodeRole = Qt::UserRole + 1,    ///< the exchange code (QString)
        BoardIdRole = Qt::UserRole + 2,      ///< the board id (int)
        BoardCodeRole = Qt::UserRole + 3,    ///< the board code (QString)
        SecurityIdRole = Qt::UserRole + 4,   ///< the security id (qlonglong)
        SecurityNameRole = Qt::UserRole + 5, ///< the security's name (QString)
        SecurityCodeRole = Qt::UserRole + 6, ///< the security's code (QString)
        BaseCodeRole = Qt::UserRole + 7      ///< the code of what it is based on (QString)
    };
    Q_ENUM(ItemDataRole)

    /// A row of the list.
    struct Data
    {
        /// What the roles give.
        QString stockCode;
        qint32 boardId = 0;
        QString boardCode;
        qint64 secId = 0;
        QString secName;
        QString secCode;
        QString baseCode;

        /// The order of the list: exchange code, board code, name.
        bool operator<(const Data &other) const;
    };

    /// The range by the model's own name for it.
    using RowRange = ::RowRange;

    /// Finds the table and the decoder plug-in; does not populate.
    explicit SecuritySelectorModel(QObject *parent = nullptr);
    ~SecuritySelectorModel() override;

    /// Reads the table anew, under its lock; of two securities of one board and name the later
    /// read stands first. What the host, filter() or the filter of a proxy throws passes
    /// through, with the lock given back and the rows left as they were, here and in the proxies.
    virtual void populate();
    /// Whether a security is to be listed: one of an open session. Called under the lock.
    virtual bool filter(const Record &record) const;
    /// The row of a security.
    Data read(const Record &record) const;
    /// Takes over which sessions are open now. It does not repopulate.
    void updateSessionsFilter();

    /// What the list shows: the name, unless set.
    ItemDataRole defaultDataRole() const { return m_defaultDataRole; }
    void setDefaultDataRole(ItemDataRole role);

    /// The rows of one board.
    RowRange rowsOfBoard(const QString &stockCode, const QString &boardCode) const;
    /// A row of the list, 0 to rowCount() - 1.
    const Data &row(int row) const { return m_rows.at(row); }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

public Q_SLOTS:
    /// The open sessions have changed: takes them over and repopulates.
    void aNewSessions();

private:
    /// The rows of one board in m_rows.
    struct Group
    {
        QString stockCode;
        QString boardCode;
        RowRange rows;
    };

    /// What the directories call a board.
    struct Codes
    {
        QString stock;
        QString board;
    };

    void connectDecoder();
    QVector<Data> readRows() const;
    Data readRow(const Record &record, boardid board, const Codes &codes) const;
    boardid boardOf(const Record &record) const;
    static Codes codesOf(boardid board);
    static QVector<Group> sortByBoard(QVector<Data> *rows);

    ModelRefresh *m_refresh;
    QVector<Data> m_rows;
    /// In the order of m_rows.
    QVector<Group> m_groups;
    Table *m_table;
    int m_stockIdColumn;
    int m_boardIdColumn;
    int m_secIdColumn;
    int m_secNameColumn;
    int m_secCodeColumn;
    int m_baseCodeColumn;
    std::unique_ptr<ValueFilter> m_sessions;
    ItemDataRole m_defaultDataRole = SecurityNameRole;
};
