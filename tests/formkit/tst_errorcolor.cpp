// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/errorcolor_p.h>

#include <support/stricttest.h>

class ErrorColorTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    // On every grey and every pure colour the red can be read, and is pure red where that can be.
    void contrast_data()
    {
        QTest::addColumn<QColor>("ground");
        for (int grey = 0; grey <= 255; grey += 15)
            QTest::addRow("grey %d", grey) << QColor(grey, grey, grey);
        for (const char *const name : {"red", "lime", "blue", "cyan", "magenta", "yellow"})
            QTest::addRow("%s", name) << QColor(name);
    }
    void contrast()
    {
        QFETCH(QColor, ground);
        QPalette palette;
        palette.setColor(QPalette::Base, ground);
        const QColor red = errorColor(palette);
        QVERIFY(contrastOf(red, ground) >= 4.5);
        QCOMPARE(red == QColor(Qt::red), contrastOf(Qt::red, ground) >= 4.5);
    }
    void scale()
    {
        QVERIFY(qFuzzyCompare(contrastOf(Qt::white, Qt::black), 21));
        QVERIFY(qAbs(contrastOf(QColor("#767676"), Qt::white) - 4.54) < 0.01);
    }
};

QTEST_MAIN(ErrorColorTest)
#include "tst_errorcolor.moc"
