// SPDX-License-Identifier: BSD-3-Clause
#include "support/keys.h"
#include "support/stricttest.h"

#include "databasefile.h"
#include "orderwindow.h"

#include <embeddedhost/embeddedhost.h>

#include <QAccessible>

// The window as somebody in front of a display has it.
class OrderWindowTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void order()
    {
        EmbeddedHost host;
        ICore::install(&host);
        QVERIFY(host.loadNow(DatabaseFile::sample()));
        OrderWindow window(&host);
        Values order;
        for (const QString &part :
             QString("StockId=1 BoardId=1 SecurityId=100004 Side=B Price=12.5 "
                     "Quantity=100 GoodTill=2999.12.31")
                 .split(' '))
            order.insert(part.section('=', 0, 0), part.section('=', 1));
        window.fill(order);
        window.show();
        QApplication::setActiveWindow(&window);
        QWidget *const check = window.control("check");
        check->setFocus();
        for (const char *name : {"place", "withdraw"}) {
            keys::press(QApplication::focusWidget(), "Tab");
            QCOMPARE(QApplication::focusWidget(), window.control(name));
            QCOMPARE(QAccessible::queryAccessibleInterface(window.control(name))->role(),
                     QAccessible::Button);
        }

        const QRect place = check->geometry();
        keys::press(window.control("place"), "Space");
        QSignalSpy changed(window.hub(), &Properties::hasChanged);
        QVERIFY(changed.wait());
        QCOMPARE(check->geometry(), place);
        const auto told = [&] { return window.control("outcome")->property("text").toString(); };
        QCOMPARE(told(), "Order placed: Buy 100 THISTLE BREWING");
        keys::type(window.control("price"), "1");
        QVERIFY(changed.wait());
        QCOMPARE(told(), " ");
        keys::type(window.control("offset"), "1,5");
        keys::press(window.control("place"), "Space");
        QCOMPARE(told(), "Not valid: Offset: '15' is no number, or could be two; enter it again");
    }
};

QTEST_MAIN(OrderWindowTest)
#include "tst_orderwindow.moc"
