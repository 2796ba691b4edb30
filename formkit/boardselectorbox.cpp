// SPDX-License-Identifier: BSD-3-Clause
#include "boardselectorbox.h"

#include "boardselectorfilteredmodel.h"
#include "boardselectormodel.h"

#include <hostapi/directories.h>

#include <utility>

namespace {

BoardSelectorFilteredModel *makeList()
{
    auto *const list = new BoardSelectorFilteredModel;
    list->setKeyRoles({BoardSelectorModel::KeyRole, BoardSelectorModel::BoardIdRole,
                       BoardSelectorModel::BoardCodeRole});
    return list;
}

} // namespace

BoardSelectorBox::BoardSelectorBox(QWidget *parent)
    : SelectorBox({makeList(),
                   {BoardSelectorModel::KeyRole},
                   {BoardSelectorModel::BoardIdRole, BoardSelectorModel::BoardCodeRole}},
                  parent)
    , m_filtered(static_cast<BoardSelectorFilteredModel *>(list()))
{
    setSourceModel(new BoardSelectorModel(this));
    startReporting();
}

void BoardSelectorBox::setSourceModel(BoardSelectorModel *model)
{
    takeSource(model);
}

void BoardSelectorBox::setSecTypeFilter(const QChar &secType)
{
    if (m_filtered)
        m_filtered->setSecTypeFilter(secType);
}

void BoardSelectorBox::setBoardFlagsOnFilter(qlonglong boardFlagsOn)
{
    if (m_filtered)
        m_filtered->setBoardFlagsOnFilter(boardFlagsOn);
}

void BoardSelectorBox::setBoardFlagsOffFilter(qlonglong boardFlagsOff)
{
    if (m_filtered)
        m_filtered->setBoardFlagsOffFilter(boardFlagsOff);
}

QString BoardSelectorBox::getStockId() const
{
    return QString::number(StockDirectory::i()->idByCode(m_place.stockCode));
}

void BoardSelectorBox::setStockId(const QString &id)
{
    lookUpPlace();
    setPlace({StockDirectory::i()->codeById(id.toInt()), id.toInt()});
}

void BoardSelectorBox::setStockCode(const QString &code)
{
    lookUpPlace();
    if (isSetByBox() && m_place.isUnknown() && !code.isEmpty())
        complete({code, m_place.givenStock});
    else if (!(isSetByBox() && code.isEmpty() && m_place.givenStock != 0))
        setPlace({code, 0});
}

void BoardSelectorBox::setPlace(const Place &place)
{
    const bool isSame = place.stockCode == m_place.stockCode &&
                        (!place.stockCode.isEmpty() || place.givenStock == m_place.givenStock);
    if (!isSame)
        narrow([&] { filter(place); });
}

void BoardSelectorBox::filter(const Place &place)
{
    const Place before = std::exchange(m_place, place);
    try {
        if (m_filtered && place.stockCode != before.stockCode)
            m_filtered->setStockCode(place.stockCode);
    } catch (...) {
        m_place = before;
        throw;
    }
}

void BoardSelectorBox::lookUpPlace()
{
    if (!m_place.isUnknown())
        return;
    const int id = m_place.givenStock;
    const Place place{StockDirectory::i()->codeById(id), id};
    if (place.isUnknown())
        return;
    complete(place);
}

void BoardSelectorBox::complete(const Place &place)
{
    filter(place);
    chooseWaiting();
}

QString BoardSelectorBox::getBoardId() const
{
    return QString::number(dataOfText(BoardSelectorModel::BoardIdRole).toInt());
}

void BoardSelectorBox::setBoardId(const QString &id)
{
    chooseKey(BoardSelectorModel::BoardIdRole, id.toInt());
}

QString BoardSelectorBox::getBoard() const
{
    return currentText();
}

QString BoardSelectorBox::getBoardCode() const
{
    return dataOfText(BoardSelectorModel::BoardCodeRole).toString();
}

void BoardSelectorBox::setBoardCode(const QString &code)
{
    chooseKey(BoardSelectorModel::BoardCodeRole, code);
}

void BoardSelectorBox::reportNone(const QString &text)
{
    if (text.isEmpty() && currentIndex() >= 0)
        setCurrentIndex(-1);
    if (!isWaitingFor(BoardSelectorModel::BoardIdRole))
        Q_EMIT boardIdChanged(QStringLiteral("0"));
    if (!isWaitingFor(BoardSelectorModel::BoardCodeRole))
        Q_EMIT boardCodeChanged(QString());
}

void BoardSelectorBox::reportText(const QString &text)
{
    Q_EMIT boardChanged(text);
}

void BoardSelectorBox::item_activated(int index)
{
    const int id = dataOfRow(index, BoardSelectorModel::BoardIdRole).toInt();
    const QString code = dataOfRow(index, BoardSelectorModel::BoardCodeRole).toString();
    Q_EMIT boardIdChanged(QString::number(id));
    Q_EMIT boardCodeChanged(code);
}
