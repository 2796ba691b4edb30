// SPDX-License-Identifier: BSD-3-Clause
#include "selectorsubject.h"

#include <formkit/securityselectorbox.h>

#include <QCompleter>
#include <QSortFilterProxyModel>

namespace {

using Role = Subject::Role;

class OurBox : public Subject
{
public:
    QComboBox *box() override { return &m_box; }
    SecuritySelectorModel *source() override
    {
        auto *list = static_cast<QAbstractProxyModel *>(m_box.model());
        return static_cast<SecuritySelectorModel *>(list->sourceModel());
    }
    void setBoard(const QString &stockCode, const QString &boardCode) override
    {
        m_box.setStockCode(stockCode);
        m_box.setBoardCode(boardCode);
    }
    void choose(Role role, const QString &key) override
    {
        if (role == Role::SecurityIdRole)
            m_box.setSecurityId(key);
        else
            m_box.setSecurityCode(key);
    }

private:
    SecuritySelectorBox m_box;
};

class StockFilter : public QSortFilterProxyModel
{
public:
    void setBoard(const QString &stockCode, const QString &boardCode)
    {
        m_stockCode = stockCode;
        m_boardCode = boardCode;
        invalidateFilter();
    }

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &) const override
    {
        if (m_stockCode.isEmpty() || m_boardCode.isEmpty())
            return true;
        const QModelIndex row = sourceModel()->index(sourceRow, 0);
        return row.data(Role::StockCodeRole).toString() == m_stockCode &&
               row.data(Role::BoardCodeRole).toString() == m_boardCode;
    }

private:
    QString m_stockCode;
    QString m_boardCode;
};

class StockBox : public Subject
{
public:
    StockBox()
    {
        m_source.populate();
        m_filter.setSortCaseSensitivity(Qt::CaseInsensitive);
        m_filter.setSourceModel(&m_source);
        m_filter.sort(0);
        m_box.setEditable(true);
        m_box.setInsertPolicy(QComboBox::NoInsert);
        m_box.setModel(&m_filter);
        auto *completer = new QCompleter(&m_filter, &m_box);
        completer->setCaseSensitivity(Qt::CaseInsensitive);
        m_box.setCompleter(completer);
        m_box.setCurrentIndex(-1);
    }

    QComboBox *box() override { return &m_box; }
    SecuritySelectorModel *source() override { return &m_source; }
    void setBoard(const QString &stockCode, const QString &boardCode) override
    {
        m_filter.setBoard(stockCode, boardCode);
        m_box.setCurrentIndex(-1);
    }
    void choose(Role role, const QString &key) override
    {
        m_box.setCurrentIndex(m_box.findData(key, role, Qt::MatchFixedString));
    }

private:
    SecuritySelectorModel m_source;
    StockFilter m_filter;
    QComboBox m_box;
};

} // namespace

std::unique_ptr<Subject> makeSubject(const QString &side)
{
    if (side == QLatin1String("ours"))
        return std::make_unique<OurBox>();
    return std::make_unique<StockBox>();
}
