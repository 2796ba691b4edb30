// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/rowindex_p.h>
#include <formkit/roworder_p.h>

#include <support/stricttest.h>

#include <QRandomGenerator>

#include <algorithm>
#include <numeric>

#include <malloc.h>

class RowOrderTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void order();
    void keys();
    void room();
};

// Against a plain sort, in each direction, while texts change.
void RowOrderTest::order()
{
    QRandomGenerator random(20240229);
    const auto newText = [&random] {
        static const QString odd = "aAbBςσΣİıßẞД";
        QString text;
        for (int i = random.bounded(4); i > 0; --i)
            text += odd.at(random.bounded(odd.size()));
        return text;
    };
    QStringList table;
    for (int row = 0; row < 80; ++row)
        table << newText();
    RowOrder list(table.size(), [&table](int row) { return table.at(row); });
    for (int round = 0; round < 1000; ++round) {
        const int changed = random.bounded(table.size());
        table[changed] = newText();
        list.move(changed);
        const auto direction = RowOrder::Direction(random.bounded(3));
        QVector<int> rows;
        const int share = random.bounded(1, 20);
        for (int row = 0; row < table.size(); ++row) {
            if (random.bounded(share) == 0)
                rows << row;
        }
        list.show(rows, direction);
        QCOMPARE(list.rows(), rows);
        const auto goesBefore = [&](int a, int b) {
            const int difference = table.at(a).compare(table.at(b), Qt::CaseInsensitive);
            return direction == RowOrder::Ascending ? difference < 0 : difference > 0;
        };
        if (direction != RowOrder::AsRead)
            std::stable_sort(rows.begin(), rows.end(), goesBefore);
        QCOMPARE(list.count(), rows.size());
        const QString text = newText();
        int first = -1, exact = -1, starting = -1, count = 0;
        for (int position = rows.size() - 1; position >= 0; --position) {
            QCOMPARE(list.rowAt(position), rows.at(position));
            QCOMPARE(list.positionOf(rows.at(position)), position);
            const QString &each = table.at(rows.at(position));
            first = each.compare(text, Qt::CaseInsensitive) == 0 ? position : first;
            count += each.compare(text, Qt::CaseInsensitive) == 0;
            exact = each == text ? position : exact;
            starting = each.startsWith(text, Qt::CaseInsensitive) ? position : starting;
        }
        QCOMPARE(list.positionOfText(text, Qt::CaseInsensitive), first);
        QCOMPARE(list.positionOfText(text, Qt::CaseSensitive), exact);
        QCOMPARE(list.countOfText(text), count);
        if (direction == RowOrder::Ascending)
            QCOMPARE(list.positionStartingWith(text, 0, false), starting);
    }
}

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

// A table of all rows, made for a look-up, is gone once few rows are shown.
void RowOrderTest::room()
{
    QVector<int> rows(200000);
    std::iota(rows.begin(), rows.end(), 0);
    RowOrder list(rows.size(), [](int row) { return QString::number(row); });
    const auto heapOfFewRows = [&](bool isLookedUp) {
        list.show(rows, RowOrder::Ascending);
        if (isLookedUp)
            list.positionOf(0);
        list.show({12345}, RowOrder::Ascending);
        const struct mallinfo2 heap = mallinfo2();
        return qint64(heap.uordblks + heap.hblkhd);
    };
    const qint64 before = heapOfFewRows(false);
    QVERIFY(heapOfFewRows(true) - before < rows.size());
}

QTEST_GUILESS_MAIN(RowOrderTest)
#include "tst_roworder.moc"
