#include <formkit/boardselectorbox.h>
#include <formkit/boardselectorfilteredmodel.h>
#include <formkit/boardselectormodel.h>
#include <formkit/properties.h>
#include <formkit/stockselectorbox.h>
#include <hostapi/exception.h>

#include <support/reports.h>
#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemModelTester>
#include <QLineEdit>

#include <functional>
#include <memory>

namespace {

using Rows = QVector<QVariantList>;
using Role = BoardSelectorModel;

// board_id, stock_id, board_code, name, sectype, flags, position
const Rows boards = {{7, 1, "B", "Shares", "S", 1, 1},   {8, 1, "A", "Futures", "F", 2, 0},
                     {9, 1, "a", "Bonds", "S", 3, 1},    {7, 2, "B", "Shares", "S", 4, 1},
                     {3, 2, "C", "Auction", "S", 1, {}}, {10, 1, "A", "Options", "O", 0, 1}};

class CheckList : public BoardSelectorModel
{
public:
    CheckList() { m_checkable = true; }
};

class SharesOnly : public BoardSelectorModel
{
public:
    bool filter(const Record &record) const override
    {
        return record.field(record.table()->columnIndex("name")).toString() == "Shares";
    }
};

QString column(const QAbstractItemModel &model, int role)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts << model.index(row, 0).data(role).toString();
    return texts.join(' ');
}

class BoxReports : public Reports<BoardSelectorBox>
{
public:
    explicit BoxReports(BoardSelectorBox *box)
        : Reports(box, {{"id", &BoardSelectorBox::boardIdChanged},
                        {"code", &BoardSelectorBox::boardCodeChanged},
                        {"text", &BoardSelectorBox::boardChanged}})
    {
    }
};

// Emissions of boardsChanged(), as texts.
class SetReports : public QStringList
{
public:
    explicit SetReports(BoardSelectorModel *model)
    {
        QObject::connect(model, &BoardSelectorModel::boardsChanged, model,
                         [this](bool enable, const Boards &keys) {
                             append((enable ? "some: " : "all: ") + boardListToString(keys));
                         });
    }
};

} // namespace

using Steps = std::function<void(BoardSelectorBox &, TestHost &)>;
Q_DECLARE_METATYPE(Steps)
using Condition = std::function<void(BoardSelectorFilteredModel &)>;
Q_DECLARE_METATYPE(Condition)

class BoardSelectorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void rows();
    void data();
    void limits();
    void at();
    void checkList();
    void failingHost();
    void conditions_data();
    void conditions();
    void reports_data();
    void reports();
    void hub();

private:
    std::unique_ptr<TestHost> m_host;
};

void BoardSelectorTest::init()
{
    StrictTest::init();
    m_host = std::make_unique<TestHost>();
    m_host->table("stocks").setRows({{1, "Moscow", "MX"}, {2, "Xetra", "XE"}});
    m_host->table("boards").setRows(boards);
}

void BoardSelectorTest::cleanup()
{
    QCOMPARE(m_host->table("boards").references(), 0);
    QVERIFY(!m_host->table("boards").isLocked());
    m_host.reset();
    StrictTest::cleanup();
}

void BoardSelectorTest::rows()
{
    BoardSelectorModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(model.rowCount(), 0);
    for (int visit = 0; visit < 2; ++visit) {
        model.populate();
        // By exchange id and board code, the later read of equals first.
        QCOMPARE(column(model, Role::KeyRole), QString("1,10 1,8 1,7 1,9 2,7 2,3"));
    }
}

void BoardSelectorTest::data()
{
    BoardSelectorModel model;
    model.populate();
    const QModelIndex row = model.index(3, 0);
    const QVariantList values{"1,9", 1, 9, "MX", "a"};
    for (int i = 0; i < values.size(); ++i) {
        QCOMPARE(row.data(257 + i), values.at(i));
        QCOMPARE(row.data(257 + i).type(), values.at(i).type());
    }
    QCOMPARE(row.data(Qt::DisplayRole).toString(), QString("Bonds"));
    QCOMPARE(row.data(Qt::EditRole).toString(), QString("Bonds"));
    QVERIFY(!row.data(Qt::CheckStateRole).isValid());
    QVERIFY(!row.data(262).isValid());
    QVERIFY(!model.data(QModelIndex(), Qt::DisplayRole).isValid());
    QVERIFY(!model.index(0, 1).isValid());
}

void BoardSelectorTest::limits()
{
    BoardSelectorModel model;
    model.setFilterBoards({{2, 3}, {1, 7}, {5, 5}});
    QCOMPARE(model.rowCount(), 0);
    model.populate();
    QCOMPARE(column(model, Role::KeyRole), QString("1,7 2,3"));
    model.setForPositions(true);
    QCOMPARE(model.rowCount(), 2);
    model.populate();
    QCOMPARE(column(model, Role::KeyRole), QString("1,7"));
    model.setFilterBoards({});
    model.populate();
    QCOMPARE(column(model, Role::KeyRole), QString("1,10 1,7 1,9 2,7"));
}

void BoardSelectorTest::at()
{
    BoardSelectorModel model;
    model.populate();
    const int code = m_host->table("boards").columnIndex("board_code");
    for (int row = 0; row < model.rowCount(); ++row)
        QCOMPARE(model.at(row).field(code).toString(),
                 model.index(row, 0).data(Role::BoardCodeRole).toString());
    QVERIFY(model.at(-1).isNull());
    QVERIFY(model.at(6).isNull());
    m_host->table("boards").setRows({boards[0]});
    QVERIFY(model.at(0).isNull());
    QVERIFY(!model.at(2).isNull());
}

void BoardSelectorTest::checkList()
{
    CheckList model;
    SetReports reports(&model);
    connect(&model, &QAbstractItemModel::modelReset,
            [this] { QVERIFY(m_host->table("boards").isLocked()); });
    model.populate();
    QVERIFY(reports.isEmpty());
    QTRY_COMPARE(reports, QStringList("all: 1,7;1,8;1,9;1,10;2,3;2,7"));
    model.disconnect(SIGNAL(modelReset()));
    QVERIFY(model.setData(model.index(0, 0), Qt::Unchecked, Qt::CheckStateRole));
    QVERIFY(model.setData(model.index(4, 0), Qt::Unchecked, Qt::CheckStateRole));
    QVERIFY(!model.setData(model.index(4, 0), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(reports.size(), 1);
    QTRY_COMPARE(reports.size(), 2);
    QCOMPARE(reports.last(), QString("some: 1,7;1,8;1,9;2,3"));
    // Setting all is not reported by itself.
    QVERIFY(model.setData(QModelIndex(), 0, Qt::CheckStateRole));
    QTest::qWait(1);
    QCOMPARE(reports.size(), 2);
    model.sendBoardsChanged();
    QCOMPARE(reports.last(), QString("some: "));
    BoardSelectorModel plain;
    plain.populate();
    QVERIFY(!plain.setData(QModelIndex(), 0, Qt::CheckStateRole));
}

void BoardSelectorTest::failingHost()
{
    BoardSelectorModel model;
    model.populate();
    SetReports reports(&model);
    QTRY_COMPARE(reports.size(), 1);
    BoardSelectorBox box;
    for (const int cell : {1, 8, 30}) {
        m_host->table("boards").failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(model.populate(), Exception);
        QCOMPARE(model.rowCount(), 6);
        m_host->table("boards").failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(BoardSelectorBox(), Exception);
        m_host->table("boards").failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(box.setSourceModel(new BoardSelectorModel), Exception);
        QCOMPARE(box.count(), 6);
        QVERIFY(!m_host->table("boards").isLocked());
    }
    QTest::qWait(1);
    QCOMPARE(reports.size(), 1);
}

void BoardSelectorTest::conditions_data()
{
    QTest::addColumn<Condition>("condition");
    QTest::addColumn<QString>("keys");
    const auto row = [](const char *name, const Condition &condition, const char *keys) {
        QTest::newRow(name) << condition << keys;
    };
    using Model = BoardSelectorFilteredModel;
    const char *const all = "2,3 1,9 1,8 1,10 1,7 2,7";
    row(
        "none", [](Model &) {}, all);
    row(
        "exchange", [](Model &m) { m.setStockCode("MX"); }, "1,9 1,8 1,10 1,7");
    row(
        "exchange in another case", [](Model &m) { m.setStockCode("mx"); }, "");
    row(
        "exchange by id", [](Model &m) { m.setStockId(2); }, "2,3 2,7");
    row(
        "unknown exchange", [](Model &m) { m.setStockId(77); }, all);
    row(
        "one flag", [](Model &m) { m.setBoardFlagsOnFilter(1); }, "2,3 1,9 1,7");
    row(
        "either flag", [](Model &m) { m.setBoardFlagsOnFilter(6); }, "1,9 1,8 2,7");
    row(
        "without a flag", [](Model &m) { m.setBoardFlagsOffFilter(1); }, "1,8 1,10 2,7");
    row(
        "flags that exclude each other",
        [](Model &m) {
            m.setBoardFlagsOnFilter(2);
            m.setBoardFlagsOffFilter(1);
        },
        "1,8");
    row(
        "one flag in both masks",
        [](Model &m) {
            m.setBoardFlagsOffFilter(1);
            m.setBoardFlagsOnFilter(1);
        },
        "");
    row(
        "flags taken away again",
        [](Model &m) {
            m.setBoardFlagsOnFilter(8);
            m.setBoardFlagsOnFilter(0);
        },
        all);
    row(
        "security type", [](Model &m) { m.setSecTypeFilter('F'); }, all);
    row(
        "all at once",
        [](Model &m) {
            m.setStockCode("MX");
            m.setBoardFlagsOnFilter(1);
            m.setBoardFlagsOffFilter(2);
        },
        "1,7");
}

void BoardSelectorTest::conditions()
{
    QFETCH(Condition, condition);
    QFETCH(QString, keys);
    BoardSelectorModel model;
    BoardSelectorFilteredModel before, after;
    const QAbstractItemModelTester tester(&after,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    condition(before);
    for (BoardSelectorFilteredModel *const filtered : {&before, &after})
        filtered->setSourceModel(&model);
    model.populate();
    condition(after);
    QCOMPARE(column(before, Role::KeyRole), keys);
    QCOMPARE(column(after, Role::KeyRole), keys);
}

void BoardSelectorTest::reports_data()
{
    QTest::addColumn<Steps>("given");
    QTest::addColumn<Steps>("when");
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("state"); // text; getters' id and code; current index; rows
    using Box = BoardSelectorBox;
    const auto row = [](const char *name, const Steps &given, const Steps &when,
                        const char *reported, const char *state) {
        QTest::newRow(name) << given << when << reported << state;
    };
    const auto nothing = [](Box &, TestHost &) {};
    const auto chosen = [](Box &b, TestHost &) { b.setBoardId("8"); };
    const auto half = [](Box &b, TestHost &) { QTest::keyClicks(&b, "fut"); };
    const char *const emptied = "id=0 code= text=";
    const auto hostHas = [](const Rows &rows) {
        return [rows](Box &b, TestHost &host) {
            host.table("boards").setRows(rows);
            b.findChild<BoardSelectorModel *>()->populate();
        };
    };

    row("new", nothing, nothing, "", "|0||-1|6");
    row("BoardId", nothing, chosen, "id=8 code=A text=Futures", "Futures|8|A|2|6");
    row(
        "BoardId that two exchanges have", nothing, [](Box &b, TestHost &) { b.setBoardId("7"); },
        "id=7 code=B text=Shares", "Shares|7|B|4|6");
    row(
        "BoardId of none", chosen, [](Box &b, TestHost &) { b.setBoardId("77"); }, "",
        "Futures|8|A|2|6");
    row(
        "BoardCode", chosen, [](Box &b, TestHost &) { b.setBoardCode("c"); },
        "id=3 code=C text=Auction", "Auction|3|C|0|6");
    row(
        "BoardCode that two have", nothing, [](Box &b, TestHost &) { b.setBoardCode("a"); },
        "id=9 code=a text=Bonds", "Bonds|9|a|1|6");

    row(
        "another exchange", chosen, [](Box &b, TestHost &) { b.setStockCode("XE"); }, emptied,
        "|0||-1|2");
    row(
        "the choice's own exchange", chosen, [](Box &b, TestHost &) { b.setStockId("1"); }, emptied,
        "|0||-1|4");
    row(
        "another exchange, half a name", half, [](Box &b, TestHost &) { b.setStockCode("MX"); },
        emptied, "|0||-1|4");
    row(
        "another exchange, nothing chosen", nothing,
        [](Box &b, TestHost &) { b.setStockCode("MX"); }, "", "|0||-1|4");
    row(
        "the same exchange",
        [](Box &b, TestHost &) {
            b.setStockCode("MX");
            b.setBoardCode("B");
        },
        [](Box &b, TestHost &) { b.setStockId("1"); }, "", "Shares|7|B|3|4");
    row(
        "no exchange",
        [](Box &b, TestHost &) {
            b.setStockCode("MX");
            b.setBoardCode("B");
        },
        [](Box &b, TestHost &) { b.setStockId("x"); }, emptied, "|0||-1|6");

    row(
        "flags that the choice has", chosen, [](Box &b, TestHost &) { b.setBoardFlagsOnFilter(2); },
        "", "Futures|8|A|1|2");
    row(
        "flags that the choice lacks", chosen,
        [](Box &b, TestHost &) { b.setBoardFlagsOnFilter(4); }, emptied, "|0||-1|1");
    row(
        "flags that the choice must not have", chosen,
        [](Box &b, TestHost &) { b.setBoardFlagsOffFilter(2); }, emptied, "|0||-1|4");
    row(
        "flags under half a name", half, [](Box &b, TestHost &) { b.setBoardFlagsOnFilter(4); }, "",
        "fut|0||-1|1");
    row(
        "flags that send a typed name away",
        [](Box &b, TestHost &) { QTest::keyClicks(&b, "Futures"); },
        [](Box &b, TestHost &) { b.setBoardFlagsOnFilter(4); }, "id=0 code= text=Futures",
        "Futures|0||-1|1");
    row(
        "security type", chosen, [](Box &b, TestHost &) { b.setSecTypeFilter('O'); }, "",
        "Futures|8|A|2|6");

    row(
        "typing a name", [](Box &b, TestHost &) { QTest::keyClicks(&b, "Bond"); },
        [](Box &b, TestHost &) { QTest::keyClicks(&b, "s"); }, "id=9 code=a text=Bonds",
        "Bonds|9|a|-1|6");
    row(
        "typing it in another case", nothing, [](Box &b, TestHost &) { b.setEditText("bonds"); },
        "id=0 code= text=bonds", "bonds|9|a|-1|6");
    row(
        "Enter on it", [](Box &b, TestHost &) { b.setEditText("bonds"); },
        [](Box &b, TestHost &) { QTest::keyClick(&b, Qt::Key_Return); }, "id=9 code=a text=Bonds",
        "Bonds|9|a|1|6");
    row(
        "clearing", chosen,
        [](Box &b, TestHost &) {
            connect(&b, &Box::boardIdChanged, &b, [&b] { QCOMPARE(b.currentIndex(), -1); });
            b.lineEdit()->clear();
        },
        emptied, "|0||-1|6");
    row(
        "a key", chosen, [](Box &b, TestHost &) { QTest::keyClick(&b, Qt::Key_Down); },
        "id=10 code=A text=Options id=10 code=A", "Options|10|A|3|6");

    row(
        "population keeps the choice", [](Box &b, TestHost &) { b.setCurrentIndex(5); },
        hostHas(boards), "", "Shares|7|B|5|6");
    row(
        "population moves the choice", [](Box &b, TestHost &) { b.setCurrentIndex(5); },
        hostHas({boards[4], boards[3]}), "", "Shares|7|B|1|2");
    row(
        "population drops the choice, a namesake stays",
        [](Box &b, TestHost &) { b.setCurrentIndex(5); }, hostHas({boards[0]}), emptied,
        "|0||-1|1");
    row("population under half a name", half, hostHas({boards[0]}), "", "fut|0||-1|1");
    row(
        "another model keeps the choice", [](Box &b, TestHost &) { b.setCurrentIndex(5); },
        [](Box &b, TestHost &) { b.setSourceModel(new SharesOnly); }, "", "Shares|7|B|1|2");
    row(
        "another model lacks the choice", chosen,
        [](Box &b, TestHost &) { b.setSourceModel(new SharesOnly); }, emptied, "|0||-1|2");
    row(
        "the model dies", chosen,
        [](Box &b, TestHost &) { delete b.findChild<BoardSelectorModel *>(); }, emptied,
        "|0||-1|0");
}

void BoardSelectorTest::reports()
{
    QFETCH(Steps, given);
    QFETCH(Steps, when);
    QFETCH(QString, reported);
    QFETCH(QString, state);
    BoardSelectorBox box;
    given(box, *m_host);
    BoxReports reports(&box);
    when(box, *m_host);
    QCOMPARE(reports.take(), reported);
    QCOMPARE(QStringList({box.getBoard(), box.getBoardId(), box.getBoardCode(),
                          QString::number(box.currentIndex()), QString::number(box.count())})
                 .join('|'),
             state);
}

void BoardSelectorTest::hub()
{
    QWidget form;
    auto *const stocks = new StockSelectorBox(&form);
    auto *const box = new BoardSelectorBox(&form);
    Properties hub;
    hub.connectAll(&form);
    const auto held = [&hub] {
        QStringList texts;
        for (const char *const name : {"StockId", "StockCode", "BoardId", "BoardCode", "Board"})
            texts << hub.values()[name].toString();
        return texts.join('|');
    };
    hub.setValue("StockId", "1");
    hub.setValue("BoardId", "7");
    QCOMPARE(held(), QString("1|MX|7|B|Shares"));
    QTest::keyClick(stocks, Qt::Key_Down);
    QCOMPARE(held(), QString("2|XE|0||"));
    QCOMPARE(column(*box->model(), Role::KeyRole), QString("2,3 2,7"));
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(held(), QString("2|XE|3|C|Auction"));
    stocks->lineEdit()->clear();
    QCOMPARE(held(), QString("0||0||"));
    QCOMPARE(box->count(), 6);
    QCOMPARE(QString(box->metaObject()->userProperty().name()), QString("BoardId"));
}

QTEST_MAIN(BoardSelectorTest)
#include "tst_boardselector.moc"
