// SPDX-License-Identifier: BSD-3-Clause
#include "terminalhost.h"

#include <formkit/boardselectorbox.h>
#include <formkit/boardselectormodel.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/properties.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectormodel.h>

#include <QApplication>
#include <QDebug>
#include <QFormLayout>
#include <QPushButton>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    TerminalHost host({{1, "XNYS", "New York"}, {2, "XNAS", "Nasdaq"}},
                      {{1, 1, "XNYS", "NYSE"}, {2, 1, "XNGS", "Global Select"}});
    host.setSecurities(
        {{1, 1, 100, "THBR", "Thistle Brewing", 1}, {2, 1, 200, "TACH", "Tamar Chemicals", 1}});
    host.setPartners({{"MB1", "C1", "Alder Lane"}});
    host.setSessions({{1, 1}, {2, 1}});
    ICore::install(&host);

    QWidget form;
    auto *layout = new QFormLayout(&form);
    layout->addRow("&Exchange", new StockSelectorBox);
    layout->addRow("&Board", new BoardSelectorBox);
    layout->addRow("&Security", new SecuritySelectorBox);
    auto *partner = new PartnerSelectorBox;
    layout->addRow("&Partner", partner);
    auto *refresh = new QPushButton("&Read again");
    layout->addRow(refresh);
    QObject::connect(refresh, &QPushButton::clicked, [&form, partner] {
        for (auto *model : form.findChildren<StockSelectorModel *>())
            model->populate();
        for (auto *model : form.findChildren<BoardSelectorModel *>())
            model->populate();
        for (auto *model : form.findChildren<SecuritySelectorModel *>())
            model->populate();
        partner->populate();
    });

    Properties hub;
    hub.connectAll(&form);
    hub.setValue("StockId", "1");
    QObject::connect(&hub, &Properties::hasChanged, [&] { qDebug() << hub.values(); });
    form.show();
    return QApplication::exec();
}
