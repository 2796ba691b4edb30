// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/rowindex_p.h>

#include <support/stricttest.h>

class RowOrderTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void keys();
};

// A key is found by reading the rows of its hash, whether it is there or not.
void RowOrderTest::keys()
{
    int reads = 0;
    const RowIndex index(1000, [&reads](int row) {
        ++reads;
        return row % 2 ? QVariant(row) : QVariant(QString("k%1").arg(row % 500));
    });
    reads = 0;
    QCOMPARE(index.rows("995"), QVector<int>{995});
    QCOMPARE(index.rows(995), QVector<int>{995});
    QCOMPARE(index.rows("K44"), QVector<int>({44, 544}));
    QVERIFY(index.rows("none").isEmpty() && index.rows(996).isEmpty());
    QVERIFY2(reads < 50, qPrintable(QString::number(reads)));
}

QTEST_GUILESS_MAIN(RowOrderTest)
#include "tst_roworder.moc"
