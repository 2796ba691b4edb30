#include "boardselectorbox.h"

#include "boardselectorfilteredmodel.h"
#include "boardselectormodel.h"

#include <hostapi/directories.h>

BoardSelectorBox::BoardSelectorBox(QWidget *parent)
    : SelectorBox(new BoardSelectorFilteredModel, {BoardSelectorModel::KeyRole}, Qt::CaseSensitive,
                  parent)
    , m_filtered(static_cast<BoardSelectorFilteredModel *>(list()))
{
    list()->setKeyRoles({BoardSelectorModel::KeyRole, BoardSelectorModel::BoardIdRole,
                         BoardSelectorModel::BoardCodeRole});
    setSourceModel(new BoardSelectorModel(this));
    startReporting();
}

void BoardSelectorBox::setSourceModel(BoardSelectorModel *model)
{
    if (!model)
        return;
    model->setParent(this);
    model->populate();
    setListSource(model);
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
    return QString::number(StockDirectory::i()->idByCode(m_stockCode));
}

void BoardSelectorBox::setStockId(const QString &id)
{
    setStockCode(StockDirectory::i()->codeById(id.toInt()));
}

void BoardSelectorBox::setStockCode(const QString &code)
{
    if (code == m_stockCode)
        return;
    m_stockCode = code;
    if (m_filtered)
        m_filtered->setStockCode(code);
    clearChoice();
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

void BoardSelectorBox::edit_changed(const QString &text)
{
    const int row = rowOfTypedText();
    if (row >= 0) {
        item_activated(row);
    } else {
        if (text.isEmpty())
            setCurrentIndex(-1);
        emit boardIdChanged(QStringLiteral("0"));
        emit boardCodeChanged(QString());
    }
    emit boardChanged(text);
}

void BoardSelectorBox::item_activated(int index)
{
    const int id = itemData(index, BoardSelectorModel::BoardIdRole).toInt();
    const QString code = itemData(index, BoardSelectorModel::BoardCodeRole).toString();
    emit boardIdChanged(QString::number(id));
    emit boardCodeChanged(code);
}
