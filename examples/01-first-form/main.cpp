// SPDX-License-Identifier: BSD-3-Clause
#include <embeddedhost/embeddedhost.h>
#include <formkit/boardselectorbox.h>
#include <formkit/dateedit.h>
#include <formkit/formvalidation.h>
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

QWidget *named(QWidget *control, const char *name)
{
    control->setProperty("field", name);
    return control;
}

QStringList wrongFields(const Values &order)
{
    QStringList wrong;
    if (order["SecurityId"].toLongLong() == 0)
        wrong << "SecurityId";
    for (const char *name : {"Price", "Quantity", "GoodTill"}) {
        if (order[name].isEmpty())
            wrong << name;
    }
    return wrong;
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
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addRow(buttons);

    auto *steps = new SecuritySteps(&dialog);
    steps->addPrice(price);
    steps->addQuantity(quantity);

    Properties hub;
    hub.connectAll(&dialog);
    FormValidation validation;
    validation.setupPropWidgets(hub, &dialog);

    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, [&] {
        const QStringList wrong = wrongFields(hub.values()) + hub.unshown();
        validation.set(wrong);
        if (wrong.isEmpty())
            dialog.accept();
    });
    if (dialog.exec() == QDialog::Accepted)
        qInfo() << hub.values();
    return 0;
}
