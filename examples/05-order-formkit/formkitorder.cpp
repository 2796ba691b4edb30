// SPDX-License-Identifier: BSD-3-Clause
#include "formkitorder.h"

#include <formkit/boardselectorbox.h>
#include <formkit/boardselectormodel.h>
#include <formkit/checkbox.h>
#include <formkit/dateedit.h>
#include <formkit/lineedit.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/quantityeditor.h>
#include <formkit/radiobutton.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectormodel.h>

#include <QFormLayout>

namespace {

template <typename Control>
Control *named(const char *name, Control *control, const char *text = nullptr,
               const char *other = nullptr)
{
    control->setProperty("field", name);
    control->setProperty(other ? "value_checked" : "value", text);
    control->setProperty("value_unchecked", other);
    return control;
}

} // namespace

FormkitOrder::FormkitOrder(QWidget *parent)
    : QWidget(parent)
    , m_exchange(new StockSelectorBox)
    , m_board(new BoardSelectorBox)
    , m_security(new SecuritySelectorBox)
    , m_partner(new PartnerSelectorBox)
{
    auto *price = named("Price", new NumberEditor);
    auto *quantity = named("Quantity", new QuantityEditor);
    auto *sum = named("Sum", new NumberEditor);
    price->setCanNegative(false);
    sum->setReadOnly(true);

    auto *layout = new QFormLayout(this);
    layout->addRow("&Exchange", m_exchange);
    layout->addRow("&Board", m_board);
    layout->addRow("&Security", m_security);
    layout->addRow("&Price", price);
    layout->addRow("&Quantity", quantity);
    layout->addRow("&Good till", named("GoodTill", new DateEdit));
    layout->addRow("B&uy", named("Side", new RadioButton, "B"));
    layout->addRow("Se&ll", named("Side", new RadioButton, "S"));
    layout->addRow("&Anonymous", named("Anonymous", new CheckBox, "Y", "N"));
    layout->addRow("&Hidden", named("Hidden", new CheckBox, "Y", "N"));
    layout->addRow("Pa&rtner", m_partner);
    layout->addRow("&Comment", named("Comment", new LineEdit));
    layout->addRow("Su&m", sum);

    m_hub.connectAll(this);
    m_validation.setupPropWidgets(m_hub, this);
    connect(&m_hub, &Properties::hasChanged, this, &FormkitOrder::updateSum);
    connect(&m_hub, &Properties::hasChanged, this, &FormkitOrder::changed);
}

void FormkitOrder::fill(const Values &order)
{
    m_hub.setValue("StockId", order["StockId"]);
    m_hub.setValue("BoardId", order["BoardId"]);
    m_hub.setValues(order);
}

void FormkitOrder::refresh()
{
    m_exchange->setSourceModel(new StockSelectorModel);
    m_board->setSourceModel(new BoardSelectorModel);
    m_security->setSourceModel(new SecuritySelectorModel);
    m_partner->populate();
}

void FormkitOrder::check()
{
    const Values order = values();
    QStringList wrong = m_hub.unshown();
    for (const char *name : {"StockId", "BoardId", "SecurityId", "Price", "Quantity", "GoodTill"}) {
        if (order[name].isEmpty() || order[name] == "0")
            wrong << name;
    }
    m_validation.set(wrong);
}

void FormkitOrder::updateSum()
{
    const Values order = values();
    qint64 sum = 0;
    QString text;
    if (decimal::canConvert(order["Price"], false)) {
        const decimal price(order["Price"]);
        const qint64 quantity = order["Quantity"].toLongLong();
        if (quantity > 0 && !__builtin_mul_overflow(price.word(), quantity, &sum))
            text = decimal(sum, price.scale()).toString();
    }
    if (text != order["Sum"])
        m_hub.setValue("Sum", text);
}
