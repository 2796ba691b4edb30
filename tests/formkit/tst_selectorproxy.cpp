#include <formkit/boardselectorfilteredmodel.h>
#include <formkit/boardselectormodel.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectorfilteredmodel.h>
#include <formkit/securityselectormodel.h>
#include <formkit/selectorproxymodel.h>

#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemModelTester>
#include <QCompleter>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QStandardItemModel>

#include <memory>

namespace {

QStringList texts(const QAbstractItemModel &model, int role = Qt::DisplayRole)
{
    QStringList all;
    for (int row = 0; row < model.rowCount(); ++row)
        all << model.index(row, 0).data(role).toString();
    return all;
}

// Rows are shown that start with the prefix.
class Prefixed : public SelectorProxyModel
{
public:
    void setPrefix(const QString &prefix)
    {
        m_prefix = prefix;
        invalidate();
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex &) const override
    {
        return sourceModel()->index(row, 0).data().toString().startsWith(m_prefix);
    }

private:
    QString m_prefix;
};

// Calls that reach QSortFilterProxyModel by a pointer to it.
void callWhatIsInert(QSortFilterProxyModel &base)
{
    base.setFilterFixedString("Gaz");
    base.setFilterRegularExpression("^L");
    base.setFilterKeyColumn(base.filterKeyColumn() + 1);
    base.setFilterRole(base.filterRole() + 1);
    base.setFilterCaseSensitivity(Qt::CaseInsensitive);
    base.setRecursiveFilteringEnabled(!base.isRecursiveFilteringEnabled());
    base.setSortCaseSensitivity(Qt::CaseInsensitive);
    base.setSortLocaleAware(!base.isSortLocaleAware());
    base.setSortRole(base.sortRole() + 1);
    base.setDynamicSortFilter(!base.dynamicSortFilter());
    base.invalidate();
}

// Texts of characters whose cases are odd, many of them equal but for case.
class OddTexts
{
public:
    QString next(int longest)
    {
        static const QString odd = QString::fromUtf8("aAbBßẞςσΣİıiIжЖёЁДд𐐀𐐨ǅǆ ﬁ");
        const QVector<uint> characters = odd.toUcs4();
        QString text;
        for (int i = m_random.bounded(longest + 1); i > 0; --i) {
            const uint character = characters.at(m_random.bounded(characters.size()));
            text += QString::fromUcs4(&character, 1);
        }
        // Half of a pair, which a host may have cut.
        if (m_random.bounded(40) == 0)
            text += QChar(m_random.bounded(2) ? 0xd801 : 0xdc00);
        return text;
    }
    int bounded(int end) { return m_random.bounded(end); }

private:
    QRandomGenerator m_random{20240229};
};

} // namespace

class SelectorProxyTest : public StrictTest
{
    Q_OBJECT

private slots:
    void mapping();
    void changes();
    void matchLikeTheBase();
    void typeAhead();
    void withoutASource();
};

void SelectorProxyTest::mapping()
{
    QStandardItemModel source;
    for (const char *const text : {"b1", "a3", "b2", "a1", "A2"})
        source.appendRow(new QStandardItem(text));
    source.setVerticalHeaderLabels({"v0", "v1", "v2", "v3", "v4"});
    source.setHorizontalHeaderLabels({"head"});
    Prefixed proxy;
    const QAbstractItemModelTester tester(&proxy,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy.setSourceModel(&source);
    proxy.setPrefix("a");
    QCOMPARE(texts(proxy), QStringList({"a1", "a3"}));
    for (int row = 0; row < proxy.rowCount(); ++row)
        QCOMPARE(proxy.mapFromSource(proxy.mapToSource(proxy.index(row, 0))), proxy.index(row, 0));
    QVERIFY(!proxy.mapFromSource(source.index(0, 0)).isValid());
    QVERIFY(!proxy.mapFromSource(proxy.index(0, 0)).isValid());
    QVERIFY(!proxy.mapToSource(source.index(0, 0)).isValid());
    QCOMPARE(proxy.headerData(1, Qt::Vertical).toString(), QString("v1"));
    QCOMPARE(proxy.headerData(0, Qt::Horizontal).toString(), QString("head"));
    QVERIFY(!proxy.headerData(2, Qt::Vertical).isValid());
    QVERIFY(proxy.setData(proxy.index(1, 0), "hint", Qt::ToolTipRole));
    QCOMPARE(source.item(1)->toolTip(), QString("hint"));
    const QItemSelection all(proxy.index(0, 0), proxy.index(1, 0));
    QCOMPARE(proxy.mapSelectionToSource(all).indexes().size(), 2);
    QCOMPARE(proxy.mapSelectionFromSource(QItemSelection(source.index(0, 0), source.index(4, 0)))
                 .indexes()
                 .size(),
             2);
    QVERIFY(!proxy.removeRows(0, 1));
    QCOMPARE(proxy.sortColumn(), 0);
    QCOMPARE(proxy.sortOrder(), Qt::AscendingOrder);
}

// Against a plain sort of what the source has and the filter accepts.
void SelectorProxyTest::changes()
{
    OddTexts odd;
    auto source = std::make_unique<QStandardItemModel>();
    Prefixed proxy;
    const QAbstractItemModelTester tester(&proxy,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy.setSourceModel(source.get());
    for (int i = 0; i < 40; ++i)
        source->appendRow(new QStandardItem(odd.next(2)));
    QString prefix;
    int order = Qt::AscendingOrder;
    for (int round = 0; round < 3000; ++round) {
        QVector<QPair<QPersistentModelIndex, QPersistentModelIndex>> held;
        for (int row = 0; row < qMin(9, proxy.rowCount()); ++row)
            held << qMakePair(QPersistentModelIndex(proxy.index(row, 0)),
                              QPersistentModelIndex(proxy.mapToSource(proxy.index(row, 0))));
        const int rows = source->rowCount();
        const int act = odd.bounded(rows > 0 ? 10 : 1);
        if (act == 0)
            source->insertRow(odd.bounded(rows + 1), new QStandardItem(odd.next(3)));
        else if (act < 3)
            source->removeRow(odd.bounded(rows));
        else if (act == 3)
            source->item(odd.bounded(rows))->setText(odd.next(2));
        else if (act == 4 && proxy.rowCount() > 1) {
            // As its neighbour but for case.
            const int row = odd.bounded(proxy.rowCount() - 1);
            proxy.setData(proxy.index(row + 1, 0), proxy.index(row, 0).data().toString().toUpper());
            const QString swapped = proxy.index(row + 1, 0).data().toString().toLower();
            proxy.setData(proxy.index(row, 0), swapped);
        } else if (act == 5)
            source->sort(0);
        else if (act == 6)
            proxy.setPrefix(prefix = QStringList({"", "a", "b"}).at(odd.bounded(3)));
        else if (act == 7) {
            order = odd.bounded(3);
            proxy.sort(order == 2 ? -1 : 0, Qt::SortOrder(order % 2));
        } else
            callWhatIsInert(proxy);
        QStringList expected;
        for (const QString &text : texts(*source)) {
            if (text.startsWith(prefix))
                expected << text;
        }
        const auto before = [order](const QString &a, const QString &b) {
            const int difference = a.compare(b, Qt::CaseInsensitive);
            return order == Qt::AscendingOrder ? difference < 0 : difference > 0;
        };
        if (order < 2)
            std::stable_sort(expected.begin(), expected.end(), before);
        QCOMPARE(texts(proxy), expected);
        for (const auto &each : held) {
            QVERIFY(each.first.isValid() || act < 7);
            QVERIFY(!each.first.isValid() || proxy.mapToSource(each.first) == each.second);
        }
    }
    source.reset();
    QCOMPARE(proxy.rowCount(), 0);
    QVERIFY(!proxy.sourceModel());
}

void SelectorProxyTest::matchLikeTheBase()
{
    OddTexts odd;
    QStandardItemModel source;
    for (int i = 0; i < 400; ++i) {
        auto *const item = new QStandardItem(odd.next(2));
        item->setData(odd.bounded(50), Qt::UserRole + 1);
        item->setData(odd.next(2), Qt::UserRole + 2);
        source.appendRow(item);
    }
    SelectorProxyModel proxy;
    proxy.setKeyRoles({Qt::UserRole + 1, Qt::UserRole + 2});
    proxy.setSourceModel(&source);
    QStandardItemModel plain; // the same rows in the same order
    for (int row = 0; row < proxy.rowCount(); ++row)
        plain.appendRow(source.itemFromIndex(proxy.mapToSource(proxy.index(row, 0)))->clone());

    const Qt::MatchFlags kinds[] = {Qt::MatchExactly,
                                    Qt::MatchExactly | Qt::MatchCaseSensitive,
                                    Qt::MatchFixedString,
                                    Qt::MatchFixedString | Qt::MatchCaseSensitive,
                                    Qt::MatchStartsWith | Qt::MatchWrap,
                                    Qt::MatchContains};
    for (int round = 0; round < 1500; ++round) {
        const int role = round % 3 == 0 ? int(Qt::DisplayRole) : Qt::UserRole + round % 3;
        const QVariant value = role == Qt::UserRole + 1
                                   ? (round % 2 ? QVariant(odd.bounded(60))
                                                : QVariant(QString::number(odd.bounded(60))))
                                   : QVariant(odd.next(2));
        const Qt::MatchFlags kind = kinds[odd.bounded(6)];
        const int start = odd.bounded(4) ? 0 : odd.bounded(plain.rowCount());
        const int hits = odd.bounded(3) - 1;
        const auto rows = [](const QModelIndexList &indexes) {
            QVector<int> numbers;
            for (const QModelIndex &index : indexes)
                numbers << index.row();
            return numbers;
        };
        QCOMPARE(rows(proxy.match(proxy.index(start, 0), role, value, hits, kind)),
                 rows(plain.match(plain.index(start, 0), role, value, hits, kind)));
    }
}

// What the completer of a box offers, against a walk over all rows.
void SelectorProxyTest::typeAhead()
{
    TestHost host;
    OddTexts odd;
    QVector<QVariantList> rows;
    for (int i = 0; i < 800; ++i)
        rows << QVariantList{i + 1, 1, 1, "C", odd.next(6), {}, 20};
    host.table("securities").setRows(rows);
    host.setSessions({{1, 20}});
    SecuritySelectorBox box;
    QStringList offeredByWalk, offered;
    for (int round = 0; round < 1500; ++round) {
        const QString typed = round == 0 ? QString("i") : odd.next(3);
        if (typed.isEmpty())
            continue;
        offeredByWalk.clear();
        for (const QString &text : texts(*box.model())) {
            if (text.startsWith(typed, Qt::CaseInsensitive))
                offeredByWalk << text;
        }
        box.completer()->setCompletionPrefix(typed);
        offered = texts(*box.completer()->completionModel());
        QCOMPARE(offered, offeredByWalk);
        const bool isWhole = std::any_of(offeredByWalk.cbegin(), offeredByWalk.cend(),
                                         [&typed](const QString &text) {
                                             return text.compare(typed, Qt::CaseInsensitive) == 0;
                                         });
        box.setEditText(typed);
        QCOMPARE(box.getSecurityId() != "0", isWhole);
    }
}

void SelectorProxyTest::withoutASource()
{
    SelectorProxyModel proxy;
    const QAbstractItemModelTester tester(&proxy,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy.setKeyRoles({Qt::UserRole});
    proxy.sort(0, Qt::DescendingOrder);
    proxy.invalidate();
    QCOMPARE(proxy.rowCount() + proxy.columnCount(), 0);
    QCOMPARE(proxy.rowOfText("", Qt::CaseInsensitive), -1);
    QVERIFY(proxy.rowsOfKey(Qt::UserRole, 1).isEmpty());
    QVERIFY(!proxy.setData(QModelIndex(), 1, Qt::EditRole));
    QVERIFY(!proxy.headerData(0, Qt::Horizontal).isValid());
    QVERIFY(!proxy.setHeaderData(0, Qt::Horizontal, "x"));
    QVERIFY(!proxy.mimeData({}));
    BoardSelectorFilteredModel boards;
    boards.setStockCode("MX");
    boards.setBoardFlagsOnFilter(1);
    SecuritySelectorFilteredModel securities;
    securities.setStockBoard("MX", "TQ");
    QCOMPARE(boards.rowCount() + securities.rowCount(), 0);
    QStandardItemModel foreign(3, 2);
    boards.setSourceModel(&foreign);
    securities.setSourceModel(&foreign);
    boards.setStockCode({});
    QCOMPARE(securities.rowCount(), 0);
    QCOMPARE(boards.rowCount(), 0);
}

QTEST_MAIN(SelectorProxyTest)
#include "tst_selectorproxy.moc"
