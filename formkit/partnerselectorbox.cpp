// SPDX-License-Identifier: BSD-3-Clause
#include "partnerselectorbox.h"

#include "partnerlinedelegate_p.h"
#include "partnersindex_p.h"
#include "selectorproxymodel.h"

#include <hostapi/table.h>

#include <QStandardItemModel>

#include <memory>

namespace {

constexpr int PopupWidth = 40; // em
// The name of the partner, at the item of the code.
constexpr int NameRole = Qt::UserRole;

QString displayLine(const QString &code, const QString &name)
{
    const QString blanks(qMax(0, PartnerSelectorBox::CodeColumnWidth - code.size()),
                         QLatin1Char(' '));
    return QStringLiteral("%1%2%3").arg(code, blanks, name);
}

SelectorProxyModel *makeList()
{
    auto *const list = new SelectorProxyModel;
    list->setKeyRoles({Qt::DisplayRole});
    return list;
}

} // namespace

PartnerSelectorBox::PartnerSelectorBox(QWidget *parent)
    : SelectorBox({makeList(),
                   {Qt::DisplayRole},
                   {NameRole},
                   Qt::CaseSensitive,
                   /*inSourceOrder=*/true,
                   LineColumn},
                  parent)
{
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    setItemDelegate(new PartnerLineDelegate({CodeColumn, NameColumn, CodeColumnWidth}, this));
    populate();
    showQuietly(count() > 0 ? 0 : -1, QString());
    setStyleSheet(QStringLiteral("QComboBox QAbstractItemView {min-width: %1em;}").arg(PopupWidth));
    startReporting();
}

bool PartnerSelectorBox::isRiskAddress() const
{
    const QVariant property = parent() ? parent()->property("RiskAddress") : QVariant();
    return property.canConvert<bool>() && property.toBool();
}

QStandardItemModel *PartnerSelectorBox::readPartners()
{
    PartnersIndex partners;
    partners.build();
    const TableLock lock(partners.table());
    auto model = std::make_unique<QStandardItemModel>(this);
    const bool clientsOnly = isRiskAddress();
    for (const Record &record : partners) {
        const QString code = record.field(partners.codeColumn()).toString();
        const QString clientCode = record.field(partners.clientCodeColumn()).toString();
        if (code.trimmed().isEmpty() || (clientsOnly && clientCode.trimmed().isEmpty()))
            continue;
        const QString name = record.field(partners.nameColumn()).toString();
        auto *const item = new QStandardItem(code);
        item->setData(name, NameRole);
        model->appendRow(
            {item, new QStandardItem(displayLine(code, name)), new QStandardItem(name)});
    }
    return model.release();
}

void PartnerSelectorBox::populate()
{
    QStandardItemModel *const model = readPartners();
    if (!list()) {
        delete model;
        return;
    }
    setListSource(model);
}

void PartnerSelectorBox::setPartner(const QString &code)
{
    if (code == m_partner)
        return;
    const int row = rowOfKey(Qt::DisplayRole, code);
    m_partner = row >= 0 ? dataOfRow(row, Qt::DisplayRole).toString() : code;
    if (row < 0 && lineEdit())
        setEditText(code);
    chooseKey(Qt::DisplayRole, code);
}

void PartnerSelectorBox::reportNone(const QString &text)
{
    if (text.isEmpty() && currentIndex() >= 0)
        setCurrentIndex(-1);
    m_partner = text;
    Q_EMIT changedPartner(m_partner);
    m_partnerName.clear();
    Q_EMIT changedPartnerName(m_partnerName);
}

void PartnerSelectorBox::item_activated(int index)
{
    m_partnerName = dataOfRow(index, NameRole).toString();
    m_partner = dataOfRow(index, Qt::DisplayRole).toString();
    Q_EMIT changedPartner(m_partner);
    Q_EMIT changedPartnerName(m_partnerName);
}
