// SPDX-License-Identifier: BSD-3-Clause
#include "securityselectorbox.h"

#include "securityselectorfilteredmodel.h"
#include "securityselectormodel.h"
#include "waitingkey_p.h"

#include <hostapi/directories.h>

#include <utility>

namespace {

using Model = SecuritySelectorModel;

SecuritySelectorFilteredModel *makeList()
{
    auto *const list = new SecuritySelectorFilteredModel;
    list->setKeyRoles({Model::SecurityIdRole, Model::SecurityCodeRole});
    return list;
}

QString boardCodeOf(int stockId, int boardId)
{
    return BoardDirectory::i()->codeById(stockId, boardId);
}

} // namespace

SecuritySelectorBox::SecuritySelectorBox(QWidget *parent)
    : SelectorBox({makeList(),
                   {Model::SecurityIdRole, Model::BoardIdRole, Model::StockCodeRole},
                   {Model::SecurityIdRole, Model::SecurityCodeRole, Model::SecurityNameRole},
                   Qt::CaseInsensitive},
                  parent)
    , m_boardOfTurn(std::make_unique<WaitingKey>())
    , m_filtered(static_cast<SecuritySelectorFilteredModel *>(list()))
{
    connect(m_boardOfTurn.get(), &WaitingKey::turnEnded, m_boardOfTurn.get(), &WaitingKey::drop);
    setSourceModel(new SecuritySelectorModel(this));
    startReporting();
}

SecuritySelectorBox::~SecuritySelectorBox() = default;

void SecuritySelectorBox::setSourceModel(SecuritySelectorModel *model)
{
    takeSource(model);
}

bool SecuritySelectorBox::Place::isSameStock(const Place &other) const
{
    return stockCode == other.stockCode && (!stockCode.isEmpty() || givenStock == other.givenStock);
}

bool SecuritySelectorBox::Place::isSameBoard(const Place &other) const
{
    return boardCode == other.boardCode && (!boardCode.isEmpty() || givenBoard == other.givenBoard);
}

QString SecuritySelectorBox::getStockId() const
{
    return QString::number(m_place.stockId);
}

void SecuritySelectorBox::setStockId(const QString &id)
{
    lookUpPlace();
    setStock(StockDirectory::i()->codeById(id.toInt()), id.toInt());
}

void SecuritySelectorBox::setStockCode(const QString &code)
{
    lookUpPlace();
    if (!(isSetByBox() && code.isEmpty() && m_place.givenStock != 0))
        setStock(code, 0);
}

void SecuritySelectorBox::setStock(const QString &code, int id)
{
    Place place = m_place;
    place.stockCode = code;
    place.givenStock = id;
    if (place.isSameStock(m_place))
        return;
    place.stockId = StockDirectory::i()->idByCode(code);
    if (isSetByBox() && m_place.isStockUnknown()) {
        place.givenStock = m_place.givenStock;
        complete(place);
        return;
    }
    place.givenBoard = m_boardOfTurn->key().toInt();
    if (m_boardOfTurn->isSet())
        place.boardCode = boardCodeOf(place.stockId, place.givenBoard);
    setPlace(place);
}

QString SecuritySelectorBox::getBoardId() const
{
    return QString::number(BoardDirectory::i()->idByCode(m_place.stockCode, m_place.boardCode));
}

void SecuritySelectorBox::setBoardId(const QString &id)
{
    lookUpPlace();
    Place place = m_place;
    place.givenBoard = id.toInt();
    place.boardCode = boardCodeOf(place.stockId, place.givenBoard);
    m_boardOfTurn->set(0, place.givenBoard);
    setPlace(place);
}

void SecuritySelectorBox::setBoardCode(const QString &code)
{
    lookUpPlace();
    if (isSetByBox() && code.isEmpty() && m_place.givenBoard != 0)
        return;
    Place place = m_place;
    place.boardCode = code;
    if (isSetByBox() && m_place.isBoardUnknown()) {
        complete(place);
        return;
    }
    place.givenBoard = 0;
    setPlace(place);
}

void SecuritySelectorBox::setPlace(const Place &place)
{
    if (!place.isSameStock(m_place) || !place.isSameBoard(m_place))
        narrow([&] { filter(place); });
    // The report that the box is empty may wait for the end of the turn; the code must not be read
    // until then.
    if (currentIndex() < 0 && currentText().isEmpty())
        m_securityCode.clear();
}

void SecuritySelectorBox::filter(const Place &place)
{
    const Place before = std::exchange(m_place, place);
    try {
        if (m_filtered)
            m_filtered->setStockBoard(place.stockCode, place.boardCode);
    } catch (...) {
        m_place = before;
        throw;
    }
}

void SecuritySelectorBox::lookUpPlace()
{
    Place place = m_place;
    if (place.isStockUnknown()) {
        place.stockCode = StockDirectory::i()->codeById(place.givenStock);
        place.stockId = place.isStockUnknown() ? place.stockId : place.givenStock;
    }
    if (place.stockId == 0 && !place.stockCode.isEmpty())
        place.stockId = StockDirectory::i()->idByCode(place.stockCode);
    if (place.isBoardUnknown())
        place.boardCode = boardCodeOf(place.stockId, place.givenBoard);
    if (!place.isSameStock(m_place) || !place.isSameBoard(m_place) ||
        place.stockId != m_place.stockId)
        complete(place);
}

void SecuritySelectorBox::complete(const Place &place)
{
    filter(place);
    chooseWaiting();
}

bool SecuritySelectorBox::isPlaceKnown() const
{
    return !m_place.isStockUnknown() && !m_place.isBoardUnknown();
}

bool SecuritySelectorBox::isInPlace(int row) const
{
    const auto isOf = [&](const QString &code, int role) {
        return code.isEmpty() || dataOfRow(row, role).toString() == code;
    };
    return isOf(m_place.stockCode, Model::StockCodeRole) &&
           isOf(m_place.boardCode, Model::BoardCodeRole);
}

QString SecuritySelectorBox::getSecurityId() const
{
    return QString::number(dataOfText(Model::SecurityIdRole).toLongLong());
}

void SecuritySelectorBox::setSecurityId(const QString &id)
{
    chooseKey(Model::SecurityIdRole, id);
}

void SecuritySelectorBox::setSecurityCode(const QString &code)
{
    if (code != m_securityCode)
        chooseKey(Model::SecurityCodeRole, code);
}

QString SecuritySelectorBox::getSecurityName() const
{
    return dataOfText(Model::SecurityNameRole).toString();
}

void SecuritySelectorBox::setSecurityName(const QString &text)
{
    if (lineEdit() && !isIgnored(text))
        setEditText(text);
}

void SecuritySelectorBox::reportNone(const QString &text)
{
    if (!isWaitingFor(Model::SecurityIdRole))
        Q_EMIT securityIdChanged(QStringLiteral("0"));
    m_securityCode.clear();
    if (!isWaitingFor(Model::SecurityCodeRole))
        Q_EMIT securityChanged(m_securityCode);
    if (text.isEmpty() && currentIndex() >= 0)
        setCurrentIndex(-1);
}

void SecuritySelectorBox::reportText(const QString &text)
{
    Q_EMIT securityNameChanged(text);
}

void SecuritySelectorBox::item_activated(int row)
{
    const qint64 id = dataOfRow(row, Model::SecurityIdRole).toLongLong();
    m_securityCode = dataOfRow(row, Model::SecurityCodeRole).toString();
    const QString name = textOfRow(row);
    Q_EMIT securityIdChanged(QString::number(id));
    Q_EMIT securityChanged(m_securityCode);
    Q_EMIT securityNameChanged(name);
}
