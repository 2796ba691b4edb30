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
    setPlace(placeOf(StockDirectory::i()->codeById(id.toInt()), id.toInt()));
}

void BoardSelectorBox::setStockCode(const QString &code)
{
    lookUpPlace();
    setPlace(placeOf(code, 0));
}

BoardSelectorBox::Place BoardSelectorBox::placeOf(const QString &stockCode, int stockId)
{
    return {stockCode, stockCode.isEmpty() ? stockId : 0};
}

void BoardSelectorBox::setPlace(const Place &place)
{
    if (place.stockCode != m_place.stockCode || place.unknownStock != m_place.unknownStock)
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
    const int id = m_place.unknownStock;
    const Place place = placeOf(id == 0 ? QString() : StockDirectory::i()->codeById(id), id);
    if (place.stockCode.isEmpty())
        return;
    filter(place);
    chooseWaiting();
}

bool BoardSelectorBox::isInPlace(int) const
{
    return m_place.unknownStock == 0;
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
    if (text.isEmpty())
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
