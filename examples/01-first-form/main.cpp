// SPDX-License-Identifier: BSD-3-Clause
#include <embeddedhost/embeddedhost.h>
#include <formkit/boardselectorbox.h>
#include <formkit/dateedit.h>
#include <formkit/formrules.h>
#include <formkit/properties.h>
#include <formkit/quantityeditor.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securitysteps.h>
#include <formkit/stockselectorbox.h>

#include <QApplication>
#include <QDebug>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>

QWidget *named(QWidget *control, const char *name)
{
    control->setProperty("field", name);
    return control;
}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    EmbeddedHost host;
    if (!host.loadNow("reference.sqlite"))
        qFatal("%s", qPrintable(host.errorText()));
    ICore::install(&host);

    QDialog dialog;
    auto *layout = new QFormLayout(&dialog);
    layout->addRow("&Exchange", new StockSelectorBox);
    layout->addRow("&Board", new BoardSelectorBox);
    layout->addRow("&Security", new SecuritySelectorBox);
    auto *price = new NumberEditor(nullptr, 4);
    auto *quantity = new QuantityEditor;
    layout->addRow("&Price", named(price, "Price"));
    layout->addRow("&Quantity", named(quantity, "Quantity"));
    layout->addRow("&Good till", named(new DateEdit, "GoodTill"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                         QDialogButtonBox::Reset);
    layout->addRow(buttons);

    auto *steps = new SecuritySteps(&dialog);
    steps->addPrice(price);
    steps->addQuantity(quantity);

    Properties hub;
    hub.connectAll(&dialog);
    FormRules rules(&hub, &dialog);
    for (const char *name : {"SecurityId", "Price", "Quantity", "GoodTill"})
        rules.require(name);
    rules.range("Quantity", "1", "10000");
    rules.range("GoodTill", "today", "");
    rules.setMarksChanges(true);

    dialog.setWindowTitle("Order[*]");
    QObject::connect(&hub, &Properties::changedStateChanged, &dialog, &QWidget::setWindowModified);
    QObject::connect(buttons->button(QDialogButtonBox::Reset), &QPushButton::clicked, &dialog,
                     [&] { hub.revert(); });
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, [&] {
        if (rules.check())
            dialog.accept();
    });
    if (dialog.exec() == QDialog::Accepted)
        qInfo() << hub.values();
    return 0;
}
