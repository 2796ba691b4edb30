// SPDX-License-Identifier: BSD-3-Clause
#include "orderrules.h"

#include <hostapi/datetime.h>
#include <hostapi/decimal.h>
#include <hostapi/exception.h>

#include <QCoreApplication>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OrderRules", text);
}

bool isMissing(const QString &id)
{
    return id.isEmpty() || id == QLatin1String("0");
}

bool isPositive(const QString &number)
{
    return decimal::canConvert(number, false) && decimal(number) > decimal::zero;
}

} // namespace

QMap<QString, QString> rejectedFields(const Values &order)
{
    QMap<QString, QString> reasons;
    const auto reject = [&reasons](const char *name, const char *reason) {
        reasons.insert(QLatin1String(name), tr(reason));
    };
    if (isMissing(order["StockId"]))
        reject("StockId", "Choose an exchange of the list");
    if (isMissing(order["BoardId"]))
        reject("BoardId", "Choose a board of the exchange");
    if (isMissing(order["SecurityId"]))
        reject("SecurityId", "Choose a security of the board");
    if (!isPositive(order["Price"]))
        reject("Price", "The price must be above zero");
    else if (!isPositive(order["Total"]))
        reject("Offset", "Price and offset must add up to more than zero");
    if (!isPositive(order["Quantity"]))
        reject("Quantity", "The quantity must be above zero");
    const datetime goodTill(order["GoodTill"]);
    if (goodTill.isNull())
        reject("GoodTill", "Enter the last day of the order");
    else if (goodTill.date() < datetime::now().date())
        reject("GoodTill", "This day has passed");
    if (order["Side"].isEmpty())
        reject("Side", "Buy or sell?");
    return reasons;
}
