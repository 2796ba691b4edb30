#include "securityselectorbox.h"

#include "securityselectorfilteredmodel.h"
#include "securityselectormodel.h"

#include <hostapi/directories.h>

SecuritySelectorBox::SecuritySelectorBox(QWidget *parent)
    : SelectorBox(new SecuritySelectorFilteredModel,
                  {SecuritySelectorModel::SecurityIdRole, SecuritySelectorModel::BoardIdRole,
                   SecuritySelectorModel::StockCodeRole},
                  Qt::CaseInsensitive, parent)
    , m_filtered(static_cast<SecuritySelectorFilteredModel *>(list()))
{
    list()->setKeyRoles(
        {SecuritySelectorModel::SecurityIdRole, SecuritySelectorModel::SecurityCodeRole});
    setSourceModel(new SecuritySelectorModel(this));
    startReporting();
}

void SecuritySelectorBox::setSourceModel(SecuritySelectorModel *model)
{
    if (!model)
        return;
    model->setParent(this);
    model->populate();
    setListSource(model);
}

QString SecuritySelectorBox::getStockId() const
{
    return QString::number(m_stockId);
}

void SecuritySelectorBox::setStockId(const QString &id)
{
    setStockCode(StockDirectory::i()->codeById(id.toInt()));
}

void SecuritySelectorBox::setStockCode(const QString &code)
{
    if (code == m_stockCode)
        return;
    m_stockCode = code;
    m_stockId = StockDirectory::i()->idByCode(code);
    narrow();
}

QString SecuritySelectorBox::getBoardId() const
{
    return QString::number(BoardDirectory::i()->idByCode(m_stockCode, m_boardCode));
}

void SecuritySelectorBox::setBoardId(const QString &id)
{
    setBoardCode(BoardDirectory::i()->codeById(m_stockId, id.toInt()));
}

void SecuritySelectorBox::setBoardCode(const QString &code)
{
    if (code == m_boardCode)
        return;
    m_boardCode = code;
    narrow();
}

void SecuritySelectorBox::narrow()
{
    if (m_filtered)
        m_filtered->setStockBoard(m_stockCode, m_boardCode);
    clearChoice();
}

QString SecuritySelectorBox::getSecurityId() const
{
    return QString::number(dataOfText(SecuritySelectorModel::SecurityIdRole).toLongLong());
}

void SecuritySelectorBox::setSecurityId(const QString &id)
{
    chooseKey(SecuritySelectorModel::SecurityIdRole, id);
}

void SecuritySelectorBox::setSecurityCode(const QString &code)
{
    if (code != m_securityCode)
        chooseKey(SecuritySelectorModel::SecurityCodeRole, code);
}

QString SecuritySelectorBox::getSecurityName() const
{
    return dataOfText(SecuritySelectorModel::SecurityNameRole).toString();
}

void SecuritySelectorBox::setSecurityName(const QString &text)
{
    setEditText(text);
}

void SecuritySelectorBox::edit_changed(const QString &text)
{
    const int row = rowOfTypedText();
    if (row >= 0) {
        item_activated(row);
    } else {
        emit securityIdChanged(QStringLiteral("0"));
        m_securityCode.clear();
        emit securityChanged(m_securityCode);
        if (text.isEmpty())
            setCurrentIndex(-1);
    }
    emit securityNameChanged(text);
}

void SecuritySelectorBox::item_activated(int row)
{
    const qint64 id = itemData(row, SecuritySelectorModel::SecurityIdRole).toLongLong();
    m_securityCode = itemData(row, SecuritySelectorModel::SecurityCodeRole).toString();
    const QString name = itemText(row);
    emit securityIdChanged(QString::number(id));
    emit securityChanged(m_securityCode);
    emit securityNameChanged(name);
}
