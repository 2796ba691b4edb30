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

#include <functional>
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

using Call = std::function<void(QSortFilterProxyModel &)>;
Q_DECLARE_METATYPE(Call)

class SelectorProxyTest : public StrictTest
{
    Q_OBJECT

private slots:
    void order();
    void mapping();
    void changesOfTheSource();
    void inertCallsOfTheBase_data();
    void inertCallsOfTheBase();
    void persistentIndexes();
    void matchLikeTheBase();
    void typeAhead();
    void withoutASource();
};

void SelectorProxyTest::order()
{
    OddTexts odd;
    for (const int count : {0, 1, 5, 300, 3000}) {
        QStandardItemModel source;
        for (int i = 0; i < count; ++i)
            source.appendRow(new QStandardItem(odd.next(7)));
        SelectorProxyModel proxy;
        proxy.setSourceModel(&source);
        QStringList expected = texts(source);
        const auto before = [](const QString &a, const QString &b) {
            return a.compare(b, Qt::CaseInsensitive) < 0;
        };
        std::stable_sort(expected.begin(), expected.end(), before);
        QCOMPARE(texts(proxy), expected);
        proxy.sort(0, Qt::DescendingOrder);
        expected = texts(source);
        std::stable_sort(expected.begin(), expected.end(),
                         [before](const QString &a, const QString &b) { return before(b, a); });
        QCOMPARE(texts(proxy), expected);
        proxy.sort(-1);
        QCOMPARE(texts(proxy), texts(source));
    }
}

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

void SelectorProxyTest::changesOfTheSource()
{
    OddTexts odd;
    auto source = std::make_unique<QStandardItemModel>();
    Prefixed proxy;
    const QAbstractItemModelTester tester(&proxy,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy.setSourceModel(source.get());
    const QStringList prefixes{"", "a", "b"};
    QString prefix;
    for (int round = 0; round < 600; ++round) {
        const int rows = source->rowCount();
        switch (odd.bounded(rows > 0 ? 7 : 2)) {
        case 0:
        case 1:
            source->insertRow(odd.bounded(rows + 1), new QStandardItem(odd.next(3)));
            break;
        case 2:
            source->removeRow(odd.bounded(rows));
            break;
        case 3:
        case 4:
            source->item(odd.bounded(rows))->setText(odd.next(3));
            break;
        case 5:
            source->sort(0);
            break;
        default:
            prefix = prefixes.at(odd.bounded(prefixes.size()));
            proxy.setPrefix(prefix);
        }
        QStringList expected;
        for (const QString &text : texts(*source)) {
            if (text.startsWith(prefix))
                expected << text;
        }
        std::stable_sort(expected.begin(), expected.end(), [](const QString &a, const QString &b) {
            return a.compare(b, Qt::CaseInsensitive) < 0;
        });
        QCOMPARE(texts(proxy), expected);
    }
    source.reset();
    QCOMPARE(proxy.rowCount(), 0);
    QVERIFY(!proxy.sourceModel());
}

void SelectorProxyTest::inertCallsOfTheBase_data()
{
    QTest::addColumn<Call>("call");
    const auto row = [](const char *name, const Call &call) { QTest::newRow(name) << call; };
    using Proxy = QSortFilterProxyModel;
    row("setFilterFixedString", [](Proxy &p) { p.setFilterFixedString("Gaz"); });
    row("setFilterRegularExpression", [](Proxy &p) { p.setFilterRegularExpression("^L"); });
    row("setFilterKeyColumn", [](Proxy &p) { p.setFilterKeyColumn(p.filterKeyColumn() + 1); });
    row("setFilterRole", [](Proxy &p) { p.setFilterRole(p.filterRole() + 1); });
    row("setFilterCaseSensitivity",
        [](Proxy &p) { p.setFilterCaseSensitivity(Qt::CaseInsensitive); });
    row("setRecursiveFilteringEnabled", [](Proxy &p) { p.setRecursiveFilteringEnabled(true); });
    row("setSortCaseSensitivity", [](Proxy &p) { p.setSortCaseSensitivity(Qt::CaseInsensitive); });
    row("setSortLocaleAware", [](Proxy &p) { p.setSortLocaleAware(true); });
    row("setSortRole", [](Proxy &p) { p.setSortRole(Qt::UserRole + 4); });
    row("setDynamicSortFilter", [](Proxy &p) {
        p.setDynamicSortFilter(false);
        p.setDynamicSortFilter(true);
    });
    row("invalidate", [](Proxy &p) { p.invalidate(); });
}

// Calls that reach QSortFilterProxyModel by a pointer to it, between changes of the filter and
// of the source: they change nothing, and say so.
void SelectorProxyTest::inertCallsOfTheBase()
{
    QFETCH(Call, call);
    TestHost host;
    host.table("stocks").setRows({{1, "Moscow", "MX"}});
    host.table("boards").setRows({{7, 1, "TQ", "Shares", {}, 1}, {8, 1, "SP", "Futures", {}, 2}});
    const auto offer = [&host](int count) {
        QVector<QVariantList> rows;
        for (int i = 0; i < count; ++i)
            rows << QVariantList{i, 1, 7 + i % 2, "C", QString("Gaz%1").arg(i % 7), {}, 20};
        host.table("securities").setRows(rows);
    };
    offer(20);
    host.setSessions({{1, 20}});

    QStandardItemModel plainSource(9, 1);
    SelectorProxyModel plain;
    plain.setSourceModel(&plainSource);
    SecuritySelectorBox box;
    auto *const securities = qobject_cast<SecuritySelectorFilteredModel *>(box.model());
    BoardSelectorModel boardSource;
    boardSource.populate();
    BoardSelectorFilteredModel boards;
    boards.setSourceModel(&boardSource);
    box.setSecurityId("5");
    const QVector<QSortFilterProxyModel *> proxies{&plain, securities, &boards};
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
    for (QSortFilterProxyModel *const proxy : proxies)
        testers.push_back(std::make_unique<QAbstractItemModelTester>(
            proxy, QAbstractItemModelTester::FailureReportingMode::QtTest));

    const auto callAll = [&] {
        for (QSortFilterProxyModel *const proxy : proxies) {
            const QPersistentModelIndex held = proxy->index(1, 0);
            const QStringList before = texts(*proxy, Qt::UserRole + 4);
            const int row = held.row();
            QSignalSpy inserted(proxy, &QAbstractItemModel::rowsInserted);
            QSignalSpy removed(proxy, &QAbstractItemModel::rowsRemoved);
            for (int i = 0; i < 3; ++i)
                call(*proxy);
            QCOMPARE(texts(*proxy, Qt::UserRole + 4), before);
            QCOMPARE(held.row(), row);
            QCOMPARE(inserted.count() + removed.count(), 0);
        }
    };
    callAll();
    box.setStockCode("MX");
    box.setBoardCode("TQ");
    boards.setBoardFlagsOnFilter(2);
    plainSource.setRowCount(4);
    QCOMPARE(box.count(), 10);
    QCOMPARE(boards.rowCount(), 1);
    QCOMPARE(plain.rowCount(), 4);
    box.setSecurityId("6");
    callAll();
    QCOMPARE(box.getSecurityId(), QString("6"));
    offer(60);
    emit host.decoder()->aNewSessions();
    boards.setBoardFlagsOnFilter(0);
    QCOMPARE(box.count(), 30);
    QCOMPARE(boards.rowCount(), 2);
    callAll();
    QCOMPARE(box.getSecurityId(), QString("6"));
    box.setBoardCode({});
    QCOMPARE(box.count(), 60);
    callAll();
}

void SelectorProxyTest::persistentIndexes()
{
    QStandardItemModel source;
    for (const char *const text : {"c", "a", "B", "b", "d"}) {
        auto *const item = new QStandardItem(text);
        item->setData(QString("%1 %2").arg(text).arg(source.rowCount()), Qt::UserRole);
        source.appendRow(item);
    }
    SelectorProxyModel proxy;
    proxy.setSourceModel(&source);
    QVector<QPair<QPersistentModelIndex, QString>> held;
    for (int row = 0; row < proxy.rowCount(); ++row)
        held << qMakePair(QPersistentModelIndex(proxy.index(row, 0)),
                          proxy.index(row, 0).data(Qt::UserRole).toString());
    const auto isSame = [&held] {
        return std::all_of(held.begin(), held.end(), [](const auto &each) {
            return each.first.data(Qt::UserRole).toString() == each.second;
        });
    };
    proxy.sort(0, Qt::DescendingOrder);
    QVERIFY(isSame());
    proxy.sort(-1);
    QVERIFY(isSame());
    proxy.sort(0);
    source.item(0)->setText("0");
    QCOMPARE(proxy.index(0, 0).data().toString(), QString("0"));
    QVERIFY(isSame());
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
