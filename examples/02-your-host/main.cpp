#include "terminalhost.h"

#include <formkit/boardselectorbox.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/properties.h>
#include <formkit/securityselectorbox.h>
#include <formkit/stockselectorbox.h>

#include <QApplication>
#include <QDebug>
#include <QFormLayout>

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
    layout->addRow("&Partner", new PartnerSelectorBox);
    Properties hub;
    hub.connectAll(&form);
    QObject::connect(&hub, &Properties::hasChanged, [&] { qDebug() << hub.values(); });
    form.show();
    return QApplication::exec();
}
