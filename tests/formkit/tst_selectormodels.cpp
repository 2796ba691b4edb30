#include <formkit/boardselectorfilteredmodel.h>
#include <formkit/boardselectormodel.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectorfilteredmodel.h>
#include <formkit/securityselectormodel.h>
#include <formkit/stockselectormodel.h>
#include <hostapi/exception.h>

#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemModelTester>
#include <QCompleter>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QStandardItemModel>

namespace {

using ModelTester = QAbstractItemModelTester;
constexpr auto Strictly = ModelTester::FailureReportingMode::QtTest;

QStringList texts(const QAbstractItemModel &model)
{
    QStringList all;
    for (int row = 0; row < model.rowCount(); ++row)
        all << model.index(row, 0).data().toString();
    return all;
}

// Rows are shown that start with the prefix.
class Prefixed : public SelectorProxyModel
{
public:
    QString prefix;

protected:
    bool filterAcceptsRow(int row, const QModelIndex &) const override
    {
        return sourceModel()->index(row, 0).data().toString().startsWith(prefix);
    }
};

// Texts of characters whose cases are odd, many of them equal but for case.
class OddTexts
{
public:
    QString next(int longest)
    {
        static const QVector<uint> odd = QString("aAbBßẞςσΣİıiIжЖёЁДд𐐀𐐨ǅǆ ﬁ").toUcs4();
        QString text;
        for (int i = bounded(longest + 1); i > 0; --i)
            text += QString::fromUcs4(&odd.at(bounded(odd.size())), 1);
        // Half of a pair, which a host may have cut.
        return bounded(40) == 0 ? text + QChar(bounded(2) ? 0xd801 : 0xdc00) : text;
    }
    int bounded(int end) { return m_random.bounded(end); }

private:
    QRandomGenerator m_random{20240229};
};

template <typename Model> class CheckList : public Model
{
public:
    CheckList() { this->m_checkable = true; }
    bool filter(const Record &record) const override
    {
        return record.field(record.table()->columnIndex("name")).toString() != "hidden";
    }
    // Takes the check of a row, or of all (-1), away or brings it.
    bool check(int row, bool is)
    {
        return this->setData(this->index(row, 0), is ? Qt::Checked : Qt::Unchecked,
                             Qt::CheckStateRole);
    }
};

} // namespace

class SelectorModelsTest : public StrictTest
{
    Q_OBJECT

private slots:
    void mapping();
    void changes();
    void matchLikeTheBase();
    void typeAhead();
    void withoutASource();
    void stockCheckList();
    void boardCheckList();
    void decoders();
};

void SelectorModelsTest::mapping()
{
    QStandardItemModel source;
    for (const char *const text : {"b1", "a3", "b2", "a1", "A2"})
        source.appendRow(new QStandardItem(text));
    source.setVerticalHeaderLabels({"v0", "v1", "v2", "v3", "v4"});
    Prefixed proxy;
    proxy.prefix = "a";
    proxy.setSourceModel(&source);
    QCOMPARE(texts(proxy), QStringList({"a1", "a3"}));
    for (const QModelIndex &foreign : {source.index(0, 0), proxy.index(0, 0)})
        QVERIFY(!proxy.mapFromSource(foreign).isValid());
    QVERIFY(!proxy.mapToSource(source.index(0, 0)).isValid());
    QCOMPARE(proxy.headerData(1, Qt::Vertical).toString(), QString("v1"));
    QVERIFY(!proxy.headerData(2, Qt::Vertical).isValid());
    const QItemSelection all(source.index(0, 0), source.index(4, 0));
    const QItemSelection shown = proxy.mapSelectionFromSource(all);
    QCOMPARE(proxy.mapSelectionToSource(shown).indexes().size(), 2);
    QVERIFY(!proxy.removeRows(0, 1));
}

// Against a plain sort of what the source has and the filter accepts.
void SelectorModelsTest::changes()
{
    OddTexts odd;
    auto source = std::make_unique<QStandardItemModel>();
    Prefixed proxy;
    const ModelTester tester(&proxy, Strictly);
    proxy.setSourceModel(source.get());
    for (int i = 0; i < 40; ++i)
        source->appendRow(new QStandardItem(odd.next(2)));
    int order = Qt::AscendingOrder;
    for (int round = 0; round < 3000; ++round) {
        QVector<QPair<QPersistentModelIndex, QPersistentModelIndex>> held;
        for (int row = 0; row < qMin(9, proxy.rowCount()); ++row)
            held << qMakePair(QPersistentModelIndex(proxy.index(row, 0)),
                              QPersistentModelIndex(proxy.mapToSource(proxy.index(row, 0))));
        const int rows = source->rowCount();
        const int act = odd.bounded(rows > 0 ? 10 : 1);
        if (act == 0) {
            source->insertRow(odd.bounded(rows + 1), new QStandardItem(odd.next(3)));
        } else if (act < 3) {
            source->removeRow(odd.bounded(rows));
        } else if (act == 3) {
            source->item(odd.bounded(rows))->setText(odd.next(2));
        } else if (act == 4 && proxy.rowCount() > 1) {
            // As its neighbour but for case.
            const int row = odd.bounded(proxy.rowCount() - 1);
            proxy.setData(proxy.index(row + 1, 0), proxy.index(row, 0).data().toString().toUpper());
            const QString swapped = proxy.index(row + 1, 0).data().toString().toLower();
            proxy.setData(proxy.index(row, 0), swapped);
        } else if (act == 5) {
            source->sort(0);
        } else if (act == 6) {
            proxy.prefix = QStringList({"", "a", "b"}).at(odd.bounded(3));
            proxy.invalidate();
        } else if (act == 7) {
            order = odd.bounded(3);
            proxy.sort(order == 2 ? -1 : 0, Qt::SortOrder(order % 2));
        } else {
            // What reaches QSortFilterProxyModel by a pointer to it changes nothing.
            QSortFilterProxyModel &base = proxy;
            base.setFilterFixedString("Gaz");
            base.setFilterRole(base.filterRole() + 1);
            base.setSortRole(base.sortRole() + 1);
            base.setDynamicSortFilter(!base.dynamicSortFilter());
            base.invalidate();
        }
        QStringList expected = texts(*source);
        for (int i = expected.size() - 1; i >= 0; --i) {
            if (!expected.at(i).startsWith(proxy.prefix))
                expected.removeAt(i);
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

void SelectorModelsTest::matchLikeTheBase()
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

    const Qt::MatchFlags cased = Qt::MatchCaseSensitive;
    const Qt::MatchFlags kinds[] = {Qt::MatchExactly,     Qt::MatchExactly | cased,
                                    Qt::MatchFixedString, Qt::MatchFixedString | cased,
                                    Qt::MatchContains,    Qt::MatchStartsWith | Qt::MatchWrap,
                                    Qt::MatchStartsWith};
    for (int round = 0; round < 1500; ++round) {
        const int role = round % 3 == 0 ? int(Qt::DisplayRole) : Qt::UserRole + round % 3;
        QVariant value = odd.next(2);
        if (role == Qt::UserRole + 1)
            value = round % 2 ? QVariant(odd.bounded(60)) : QString::number(odd.bounded(60));
        const Qt::MatchFlags kind = kinds[odd.bounded(7)];
        const int start = odd.bounded(4) ? 0 : odd.bounded(plain.rowCount());
        const int hits = odd.bounded(3) - 1;
        const auto rows = [&](const QAbstractItemModel &model) {
            QVector<int> numbers;
            for (const auto &index : model.match(model.index(start, 0), role, value, hits, kind))
                numbers << index.row();
            return numbers;
        };
        QCOMPARE(rows(proxy), rows(plain));
    }
}

// What the completer of a box offers, against a walk over all rows.
void SelectorModelsTest::typeAhead()
{
    TestHost host;
    OddTexts odd;
    QVector<QVariantList> rows;
    for (int i = 0; i < 800; ++i)
        rows << QVariantList{i + 1, 1, 1, "C", odd.next(6), {}, 20};
    host.table("securities").setRows(rows);
    host.setSessions({{1, 20}});
    SecuritySelectorBox box;
    const QStringList all = texts(*box.model());
    for (int round = 0; round < 1500; ++round) {
        const QString typed = round == 0 ? QString("i") : odd.next(3);
        if (typed.isEmpty())
            continue;
        QStringList offered;
        for (const QString &text : all) {
            if (text.startsWith(typed, Qt::CaseInsensitive))
                offered << text;
        }
        box.completer()->setCompletionPrefix(typed);
        QCOMPARE(texts(*box.completer()->completionModel()), offered);
        box.setEditText(typed);
        QCOMPARE(box.getSecurityId() != "0", offered.contains(typed, Qt::CaseInsensitive));
    }
}

void SelectorModelsTest::withoutASource()
{
    SelectorProxyModel proxy;
    const ModelTester tester(&proxy, Strictly);
    proxy.setKeyRoles({Qt::UserRole});
    proxy.sort(0, Qt::DescendingOrder);
    proxy.invalidate();
    QCOMPARE(proxy.rowCount() + proxy.columnCount(), 0);
    QCOMPARE(proxy.rowOfText("", Qt::CaseInsensitive), -1);
    QVERIFY(proxy.rowsOfKey(Qt::UserRole, 1).isEmpty());
    QVERIFY(!proxy.setData(QModelIndex(), 1, Qt::EditRole));
    QVERIFY(!proxy.headerData(0, Qt::Horizontal).isValid() && !proxy.mimeData({}));
    QVERIFY(!proxy.setHeaderData(0, Qt::Horizontal, "x"));
    QStandardItemModel foreign(3, 2);
    BoardSelectorFilteredModel boards;
    SecuritySelectorFilteredModel securities;
    for (QStandardItemModel *const source :
         {static_cast<QStandardItemModel *>(nullptr), &foreign}) {
        boards.setSourceModel(source);
        securities.setSourceModel(source);
        boards.setBoardFlagsOnFilter(1);
        securities.setStockBoard("MX", source ? "TQ" : "");
        QCOMPARE(boards.rowCount() + securities.rowCount(), 0);
    }
}

void SelectorModelsTest::stockCheckList()
{
    TestHost host;
    host.table("stocks").setRows(
        {{1, "One", "A"}, {2, "Two", "C"}, {3, "Three", "B"}, {4, "hidden", "D"}});
    CheckList<StockSelectorModel> model;
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    QStringList notes;
    connect(&model, &StockSelectorModel::stocksChanged, [&](bool some, const Stocks &stocks) {
        notes << (some ? "some:" : "all:");
        for (const qint32 id : stocks)
            notes.last() += QString::number(id);
    });
    model.sendStocksChanged();
    model.populate();
    QVERIFY(model.flags(model.index(0, 0)) & Qt::ItemIsUserCheckable);
    QCOMPARE(model.index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
    QVERIFY(!model.check(1, true) && model.check(1, false));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toModelIndex(), model.index(1, 0));
    model.sendStocksChanged();
    for (const bool is : {false, true}) {
        QVERIFY(model.check(-1, is));
        model.sendStocksChanged();
    }
    QCOMPARE(notes, QStringList({"all:", "some:12", "some:", "all:123"}));
}

// Checks are reported in the next turn, once; setting all is not, nor a population that fails.
void SelectorModelsTest::boardCheckList()
{
    TestHost host;
    TestTable &table = host.table("boards");
    table.setRows({{7, 1, "B", "b"}, {8, 1, "A", "a"}, {7, 2, "B", "c"}, {9, 2, "B", "hidden"}});
    CheckList<BoardSelectorModel> model;
    QStringList notes;
    connect(&model, &BoardSelectorModel::boardsChanged, [&](bool some, const Boards &boards) {
        notes << (some ? "some:" : "all:");
        for (const Board &board : boards)
            notes.last() += QString(" %1,%2").arg(board.stock_id).arg(board.board_id);
    });
    model.populate();
    QVERIFY(notes.isEmpty());
    QTRY_COMPARE(notes, QStringList("all: 1,7 1,8 2,7"));
    QVERIFY(model.check(0, false) && model.check(2, false));
    QCOMPARE(notes.size(), 1);
    QTRY_COMPARE(notes.mid(1), QStringList("some: 1,7"));
    QVERIFY(model.check(-1, false));
    table.failAtCell(1);
    QVERIFY_EXCEPTION_THROWN(model.populate(), Exception);
    QTest::qWait(1);
    QCOMPARE(notes.size(), 2);

    for (int row = 0; row < model.rowCount(); ++row)
        QCOMPARE(model.at(row).field(table.columnIndex("name")).toString(), texts(model).at(row));
    QVERIFY(model.at(-1).isNull() && model.at(3).isNull());
    table.setRows({});
    QVERIFY(model.at(0).isNull());
}

// A model listens to the first decoder among the plug-ins.
void SelectorModelsTest::decoders()
{
    TestHost host;
    host.table("securities").setRows({{1, 1, 1, "C", "Name", {}, 20}});
    host.setSessions({{1, 20}});
    TestDecoder first;
    QObject other;
    host.setPlugins({nullptr, &other, &first, host.decoder()});
    const SecuritySelectorModel listening;
    emit host.decoder()->aNewSessions();
    QCOMPARE(listening.rowCount(), 0);
    emit first.aNewSessions();
    QCOMPARE(listening.rowCount(), 1);
    host.setPlugins({});
    SecuritySelectorModel alone;
    alone.populate();
    QCOMPARE(alone.rowCount(), 1);
}

QTEST_MAIN(SelectorModelsTest)
#include "tst_selectormodels.moc"
