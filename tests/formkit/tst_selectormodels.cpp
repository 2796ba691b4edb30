// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/boardselectorbox.h>
#include <formkit/boardselectorfilteredmodel.h>
#include <formkit/boardselectormodel.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/stockselectormodel.h>
#include <hostapi/exception.h>

#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QRandomGenerator>
#include <QStandardItemModel>

namespace {

using ModelTester = QAbstractItemModelTester;
constexpr auto Strictly = ModelTester::FailureReportingMode::QtTest;
constexpr int NumberRole = Qt::UserRole + 1;
constexpr int TextRole = Qt::UserRole + 2;
constexpr Qt::MatchFlag Cased = Qt::MatchCaseSensitive;
const Qt::MatchFlags Kinds[] = {Qt::MatchExactly,     Qt::MatchExactly | Cased,
                                Qt::MatchFixedString, Qt::MatchFixedString | Cased,
                                Qt::MatchContains,    Qt::MatchStartsWith | Qt::MatchWrap,
                                Qt::MatchStartsWith};

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
    bool isFailing = false;

protected:
    bool filterAcceptsRow(int row, const QModelIndex &) const override
    {
        if (isFailing)
            throw Exception("filter failed");
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
    CheckList() { this->checkable = true; }
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

private Q_SLOTS:
    void mapping();
    void changes();
    void failures();
    void stockCheckList();
    void boardCheckList();
    void fixedList();
    void tallRow();
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
    // A number equals several texts.
    source.item(3)->setData("07", TextRole);
    source.item(1)->setData("7", TextRole);
    proxy.setKeyRoles({TextRole});
    QCOMPARE(proxy.match(proxy.index(0, 0), TextRole, 7, 1, Qt::MatchExactly),
             QModelIndexList{proxy.index(0, 0)});
}

// Against a plain sort of what the source has and the filter accepts, and the base's own match().
void SelectorModelsTest::changes()
{
    OddTexts odd;
    auto source = std::make_unique<QStandardItemModel>();
    Prefixed proxy;
    const ModelTester tester(&proxy, Strictly);
    proxy.setKeyRoles({NumberRole, TextRole});
    proxy.setSourceModel(source.get());
    const auto newItem = [&odd] {
        auto *const item = new QStandardItem(odd.next(2));
        item->setData(odd.bounded(50), NumberRole);
        item->setData(odd.next(2), TextRole);
        return item;
    };
    for (int i = 0; i < 60; ++i)
        source->appendRow(newItem());
    const auto matchLikeTheBase = [&] {
        for (const int role : {int(Qt::DisplayRole), NumberRole, TextRole}) {
            const QVariant number = odd.bounded(60);
            const QVariant value = role != NumberRole ? QVariant(odd.next(2))
                                   : odd.bounded(2)   ? number
                                                      : number.toString();
            const Qt::MatchFlags kind = Kinds[odd.bounded(int(std::size(Kinds)))];
            const QModelIndex start =
                proxy.index(odd.bounded(2) ? 0 : odd.bounded(proxy.rowCount() + 1), 0);
            const int hits = odd.bounded(3) - 1;
            QCOMPARE(proxy.match(start, role, value, hits, kind),
                     proxy.QAbstractItemModel::match(start, role, value, hits, kind));
        }
    };
    int order = Qt::AscendingOrder;
    for (int round = 0; round < 3000; ++round) {
        QVector<QPair<QPersistentModelIndex, QPersistentModelIndex>> held;
        for (int row = 0; row < qMin(9, proxy.rowCount()); ++row)
            held << qMakePair(QPersistentModelIndex(proxy.index(row, 0)),
                              QPersistentModelIndex(proxy.mapToSource(proxy.index(row, 0))));
        const int rows = source->rowCount();
        const int act = odd.bounded(rows > 0 ? 10 : 1);
        if (act < 2) {
            source->insertRow(odd.bounded(rows + 1), newItem());
        } else if (act == 2) {
            source->removeRow(odd.bounded(rows));
        } else if (act == 3) {
            source->item(odd.bounded(rows))->setText(odd.next(2));
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
        const auto isHidden = [&](const QString &text) { return !text.startsWith(proxy.prefix); };
        expected.erase(std::remove_if(expected.begin(), expected.end(), isHidden), expected.end());
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
        matchLikeTheBase();
    }
    source.reset();
    QCOMPARE(proxy.rowCount(), 0);
    QVERIFY(!proxy.sourceModel());
}

// What the filter throws passes on, and the list stays as it was; but data that change are shown.
void SelectorModelsTest::failures()
{
    QStandardItemModel source, other;
    for (const char *const text : {"a1", "b2", "a3"})
        source.appendRow(new QStandardItem(text));
    other.appendRow(new QStandardItem("a9"));
    Prefixed proxy;
    const ModelTester tester(&proxy, Strictly);
    proxy.prefix = "a";
    proxy.setSourceModel(&source);
    proxy.isFailing = true;
    const auto shownAfter = [&proxy](const std::function<void()> &act) {
        try {
            act();
        } catch (const Exception &) {
            return texts(proxy).join(' ');
        }
        return QString("nothing was thrown");
    };
    QCOMPARE(shownAfter([&] { proxy.invalidate(); }), QString("a1 a3"));
    QCOMPARE(shownAfter([&] { proxy.setSourceModel(&other); }), QString("a1 a3"));
    QCOMPARE(shownAfter([&] { source.item(0)->setText("b4"); }), QString("a3 b4"));
    const auto changeAll = [&] {
        Q_EMIT source.dataChanged(source.index(0, 0), source.index(2, 0));
    };
    QCOMPARE(shownAfter(changeAll), QString("a3 b4"));
    // Its rows may be others now: none until the filter next gives an answer.
    QCOMPARE(shownAfter([&] { source.sort(0); }), QString());
    proxy.isFailing = false;
    proxy.invalidate();
    QCOMPARE(texts(proxy), QStringList("a3"));
    // A model of the library keeps its old rows, too.
    TestHost host;
    StockSelectorModel stocks;
    host.table("stocks").setRows({{1, "a1", "A"}});
    stocks.populate();
    proxy.setSourceModel(&stocks);
    proxy.isFailing = true;
    host.table("stocks").setRows({{2, "a2", "B"}});
    QCOMPARE(shownAfter([&] { stocks.populate(); }), QString("a1"));
}

// Checks of stocks are reported when asked for.
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
    auto *const timer = model.findChild<QTimer *>();
    timer->setSingleShot(true);
    timer->start();
    QTRY_COMPARE(notes.size(), 1);
    model.populate();
    QVERIFY(model.flags(model.index(0, 0)) & Qt::ItemIsUserCheckable);
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

// Checks of boards are reported in the next turn, once; setting all is not, nor a population that
// fails.
void SelectorModelsTest::boardCheckList()
{
    TestHost host;
    TestTable &table = host.table("boards");
    host.table("stocks").setRows({{1, "One", "A"}, {2, "Two", "B"}});
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
    for (int row = 0; row < 3; ++row)
        QCOMPARE(model.index(row, 0).data(Qt::CheckStateRole).toInt(), row == 1 ? 2 : 0);
    QVERIFY(model.check(-1, false));
    table.failAtCell(1);
    QVERIFY_EXCEPTION_THROWN(model.populate(), Exception);
    QTest::qWait(1);
    QCOMPARE(notes.size(), 2);

    BoardSelectorFilteredModel filtered;
    filtered.setSourceModel(&model);
    for (const int stock : {1, 1, 2, 9}) {
        filtered.setStockId(stock);
        QCOMPARE(filtered.rowCount(), stock == 9 ? 3 : 3 - stock);
    }
}

// The check of another row is no news in a box that cannot be edited.
void SelectorModelsTest::fixedList()
{
    TestHost host;
    host.table("boards").setRows({{7, 1, "B", "b"}, {8, 1, "A", "a"}});
    BoardSelectorBox box;
    auto *const model = new CheckList<BoardSelectorModel>;
    const QPointer<BoardSelectorModel> former = box.findChild<BoardSelectorModel *>();
    box.setSourceModel(model);
    QVERIFY(!former);
    box.setEditable(false);
    box.setCurrentIndex(0);
    const QSignalSpy reports(&box, &BoardSelectorBox::boardIdChanged);
    QVERIFY(model->check(1, false) && model->check(0, false));
    QCOMPARE(reports.size(), 0);
}

// A name of many lines does not make all rows as high.
void SelectorModelsTest::tallRow()
{
    TestHost host;
    TestTable &table = host.table("securities");
    host.setSessions({{1, 20}});
    table.setRows({{1, 1, 1, "A", QString(30, '\n') + 'x', {}, 20}});
    SecuritySelectorBox box;
    const int width = box.sizeHint().width();
    const int font = box.view()->fontMetrics().height();
    const int height = box.view()->sizeHintForRow(0);
    QVERIFY2(height >= font && height <= 2 * font, qPrintable(QString::number(height)));
    // Nor is a box that nobody has seen yet too narrow for what a refresh brings.
    table.setRows({{1, 1, 1, "A", QString(30, 'W'), {}, 20}});
    box.findChild<SecuritySelectorModel *>()->populate();
    QVERIFY(box.sizeHint().width() > width);
}

QTEST_MAIN(SelectorModelsTest)
#include "tst_selectormodels.moc"
