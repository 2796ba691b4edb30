// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>
#include <formkit/rowrange.h>

#include <QAbstractListModel>

#include <memory>

class Record;

/// The securities of the trading sessions that are open, from the host's table "securities":
/// by exchange code, board code and name (each case-sensitive). When the first loaded plug-in
/// that offers IDecoder announces new sessions, the list is read again: at once, or later when
/// the table has more than 50,000 rows and populatesLater() is true.
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

    /// Reads the table again, under its lock; of two securities of one board and name the later
    /// read stands first. What the host, filter() or the filter of a proxy throws passes
    /// through, with the lock given back and the rows left as they were, here and in the proxies.
    /// Gives up what populateLater() has begun.
    virtual void populate();
    /// Reads the table again without anybody waiting for it: returns at once, and replaces the
    /// rows later, in one reset from the event loop. Another thread walks the table under its lock
    /// and orders the rows; the directories are asked on this one. Called again, it starts
    /// over. When something throws, or the host is taken away (ICore::install()), the rows stay as
    /// they were; the text of the exception is logged. While populatesLater() is false this is
    /// populate().
    void populateLater();
    /// The rows that populateLater() was called for are still to come.
    bool isPopulating() const;
    /// Whether another thread may do it. Unless set: true for this class, false for every subclass,
    /// which may not be prepared for that.
    bool populatesLater() const;
    /// A subclass that sets true promises: its filter() may be called on another thread, with the
    /// table locked; its data() gives the display role and the keys as this class does; its
    /// destructor begins with setPopulatesLater(false), after which filter() is not called there
    /// any more. False gives up what populateLater() has begun.
    void setPopulatesLater(bool is);

    /// Whether a security is to be listed: one of an open session. Called under the lock.
    virtual bool filter(const Record &record) const;
    /// The row of a security.
    Data read(const Record &record) const;
    /// Takes over which sessions are open now. It does not repopulate.
    void updateSessionsFilter();

    /// What the list shows: the name, unless set.
    ItemDataRole defaultDataRole() const;
    void setDefaultDataRole(ItemDataRole role);

    /// The rows of one board.
    RowRange rowsOfBoard(const QString &stockCode, const QString &boardCode) const;
    /// A row of the list, 0 to rowCount() - 1.
    const Data &row(int row) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

public Q_SLOTS:
    /// The open sessions have changed: takes them over and reads the table again.
    void aNewSessions();

Q_SIGNALS:
    /// True when populateLater() begins, false when it has ended, with new rows or without.
    void populating(bool is);

private:
    struct Private;

    void connectDecoder();
    bool isLarge() const;
    void endPopulating();

    std::unique_ptr<Private> d;
};
