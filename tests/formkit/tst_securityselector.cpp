#include <formkit/properties.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectorfilteredmodel.h>
#include <formkit/securityselectormodel.h>
#include <hostapi/exception.h>

#include <support/reports.h>
#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <functional>
#include <memory>

namespace {

using Rows = QVector<QVariantList>;
using Role = SecuritySelectorModel;

// sec_id, stock_id, board_id, sec_code, sec_name, base_code, sess_id
const Rows securities = {
    {10, 1, 7, "GA", "Gazprom", "ga", 20},  {11, 1, 7, "GN", "Gazprom neft", "gn", 20},
    {12, 1, 7, "GA2", "Gazprom", "ga", 20}, {13, 1, 8, "GAF", "Gazprom", "ga", 20},
    {14, 1, 8, "aF", "aeroflot", {}, 20},   {15, 2, 7, "LS", "Lufthansa", "ls", 30},
    {16, 1, 8, "OLD", "Closed", "ol", 21}};

QString column(const QAbstractItemModel &model, int role)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts << model.index(row, 0).data(role).toString();
    return texts.join(' ');
}

class BoxReports : public Reports<SecuritySelectorBox>
{
public:
    explicit BoxReports(SecuritySelectorBox *box)
        : Reports(box, {{"id", &SecuritySelectorBox::securityIdChanged},
                        {"code", &SecuritySelectorBox::securityChanged},
                        {"name", &SecuritySelectorBox::securityNameChanged}})
    {
    }
};

} // namespace

// A box with what its test needs around it, handled as a user would.
struct Desk
{
    explicit Desk(TestHost *desksHost) : host(desksHost)
    {
        auto *const layout = new QVBoxLayout(&form);
        layout->addWidget(&box);
        layout->addWidget(&next);
    }
    ~Desk() { box.setParent(nullptr); }
    void show()
    {
        form.show();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        box.setFocus();
    }
    void type(const QString &text) { QTest::keyClicks(&box, text); }
    // Presses a key where a user's key goes.
    void press(int key, int times = 1)
    {
        for (int i = 0; i < times; ++i) {
            QWidget *const popup = QApplication::activePopupWidget();
            QWidget *const view = popup && popup->focusWidget() ? popup->focusWidget() : popup;
            QTest::keyClick(view ? view : &box, Qt::Key(key));
        }
    }
    bool isCompleting() const { return box.completer()->popup()->isVisible(); }
    QAbstractItemView *list() { return box.view(); }
    int listRow() { return list()->currentIndex().row(); }
    void securitiesAre(const Rows &rows)
    {
        host->table("securities").setRows(rows);
        emit host->decoder()->aNewSessions();
    }
    SecuritySelectorModel *model()
    {
        return qobject_cast<SecuritySelectorModel *>(
            static_cast<QAbstractProxyModel *>(box.model())->sourceModel());
    }

    TestHost *host;
    SecuritySelectorBox box;
    BoxReports reports{&box};
    QWidget form;
    QLineEdit next;
};

using Steps = std::function<void(Desk &)>;
Q_DECLARE_METATYPE(Steps)

class SecuritySelectorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void rows();
    void data();
    void sessions();
    void failingHost();
    void displayRole();
    void narrowing_data();
    void narrowing();

    void reports_data();
    void reports();
    void keys_data();
    void keys();
    void farRows();
    void mouse();
    void hub();
    void noHost();
    void destroyedWithItsPopupsOpen();
    void failingHostUnderABox();

private:
    std::unique_ptr<TestHost> m_host;
};

void SecuritySelectorTest::init()
{
    StrictTest::init();
    m_host = std::make_unique<TestHost>();
    m_host->table("stocks").setRows({{1, "Moscow", "MX"}, {2, "Xetra", "XE"}});
    m_host->table("boards").setRows(
        {{7, 1, "TQ", "Shares", "S"}, {8, 1, "SP", "Futures", "F"}, {7, 2, "TQ", "Shares", "S"}});
    m_host->table("securities").setRows(securities);
    m_host->setSessions({{1, 20}, {2, 30}});
}

void SecuritySelectorTest::cleanup()
{
    for (const char *const name : {"stocks", "boards", "securities"}) {
        QCOMPARE(m_host->table(name).references(), 0);
        QVERIFY(!m_host->table(name).isLocked());
    }
    m_host.reset();
    StrictTest::cleanup();
}

void SecuritySelectorTest::rows()
{
    m_host->table("securities").addRow({17, 9, 1, "NO", "No exchange", {}, 20});
    m_host->setSessions({{1, 20}, {2, 30}, {9, 20}});
    SecuritySelectorModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(model.rowCount(), 0);
    for (int visit = 0; visit < 2; ++visit) {
        model.populate();
        // By exchange code, board code and name, the later read of equals first.
        QCOMPARE(column(model, Role::SecurityIdRole), QString("17 13 14 12 10 11 15"));
    }
}

void SecuritySelectorTest::data()
{
    SecuritySelectorModel model;
    model.populate();
    const QModelIndex row = model.index(0);
    const QVariantList values{"MX", 8, "SP", qlonglong(13), "Gazprom", "GAF", "ga"};
    for (int i = 0; i < values.size(); ++i) {
        QCOMPARE(row.data(257 + i), values.at(i));
        QCOMPARE(row.data(257 + i).type(), values.at(i).type());
    }
    QCOMPARE(row.data(Qt::DisplayRole).toString(), QString("Gazprom"));
    QCOMPARE(row.data(Qt::EditRole).toString(), QString("Gazprom"));
    QVERIFY(!row.data(Qt::ToolTipRole).isValid());
    QVERIFY(!row.data(264).isValid());
    QVERIFY(!model.data(QModelIndex(), Qt::DisplayRole).isValid());
    QCOMPARE(model.flags(row), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    QCOMPARE(model.rowCount(row), 0);
}

void SecuritySelectorTest::sessions()
{
    SecuritySelectorModel model;
    emit m_host->decoder()->aNewSessions();
    QCOMPARE(model.rowCount(), 6);
    m_host->setSessions({{1, 21}});
    model.populate();
    QCOMPARE(model.rowCount(), 6);
    emit m_host->decoder()->aNewSessions();
    QCOMPARE(column(model, Role::SecurityCodeRole), QString("OLD"));

    TestDecoder second;
    QObject other;
    m_host->setPlugins({nullptr, &other, &second, m_host->decoder()});
    SecuritySelectorModel listening;
    emit m_host->decoder()->aNewSessions();
    QCOMPARE(listening.rowCount(), 0);
    emit second.aNewSessions();
    QCOMPARE(listening.rowCount(), 1);
    m_host->setPlugins({});
    SecuritySelectorModel alone;
    alone.populate();
    QCOMPARE(alone.rowCount(), 1);
}

void SecuritySelectorTest::failingHost()
{
    SecuritySelectorModel model;
    model.populate();
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    for (const int cell : {1, 2, 3, 20, 45}) {
        m_host->table("securities").failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(model.populate(), Exception);
        QCOMPARE(column(model, Role::SecurityIdRole), QString("13 14 12 10 11 15"));
        QVERIFY(!m_host->table("securities").isLocked());
    }
}

void SecuritySelectorTest::displayRole()
{
    SecuritySelectorModel model;
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setDefaultDataRole(Role::BaseCodeRole);
    QCOMPARE(changes.count(), 0);
    model.populate();
    QCOMPARE(column(model, Qt::DisplayRole), QString("ga  ga ga gn ls"));
    model.setDefaultDataRole(Role::BaseCodeRole);
    QCOMPARE(changes.count(), 0);
    model.setDefaultDataRole(Role::SecurityCodeRole);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toModelIndex(), model.index(0));
    QCOMPARE(changes[0][1].toModelIndex(), model.index(5));
    QVERIFY(changes[0][2].value<QVector<int>>().isEmpty());
    QCOMPARE(model.defaultDataRole(), Role::SecurityCodeRole);
}

void SecuritySelectorTest::narrowing_data()
{
    QTest::addColumn<QString>("stock");
    QTest::addColumn<QString>("board");
    QTest::addColumn<QString>("ids");
    const QString all = "14 13 12 10 11 15";
    QTest::newRow("nothing set") << ""
                                 << "" << all;
    QTest::newRow("exchange alone") << "MX"
                                    << "" << all;
    QTest::newRow("board alone") << ""
                                 << "TQ" << all;
    QTest::newRow("both") << "MX"
                          << "TQ"
                          << "12 10 11";
    QTest::newRow("the other exchange") << "XE"
                                        << "TQ"
                                        << "15";
    QTest::newRow("board in another case") << "MX"
                                           << "tq"
                                           << "";
    QTest::newRow("unknown") << "MX"
                             << "ZZ"
                             << "";
}

void SecuritySelectorTest::narrowing()
{
    QFETCH(QString, stock);
    QFETCH(QString, board);
    QFETCH(QString, ids);
    SecuritySelectorBox box;
    const QAbstractItemModelTester tester(box.model(),
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    box.setStockCode(stock);
    box.setBoardCode(board);
    QCOMPARE(column(*box.model(), Role::SecurityIdRole), ids);
    QCOMPARE(box.getStockCode(), stock);
    QCOMPARE(box.getBoardCode(), board);
    // And by one who says the conditions himself.
    SecuritySelectorFilteredModel filtered;
    SecuritySelectorModel model;
    filtered.setStockBoard(stock, board);
    filtered.setSourceModel(&model);
    QSignalSpy resets(&filtered, &QAbstractItemModel::modelReset);
    model.populate();
    filtered.setStockBoard(stock, board);
    QCOMPARE(resets.count(), 1);
    QCOMPARE(column(filtered, Role::SecurityIdRole), ids);
}

void SecuritySelectorTest::reports_data()
{
    QTest::addColumn<Steps>("given");
    QTest::addColumn<Steps>("when");
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("state"); // getters' id, code, name; current index; caret
    const auto row = [](const char *name, const Steps &given, const Steps &when,
                        const char *reported, const char *text, const char *state) {
        QTest::newRow(name) << given << when << reported << text << state;
    };
    const auto nothing = [](Desk &) {};
    const auto chosen = [](Desk &d) { d.box.setSecurityId("10"); };
    const auto half = [](Desk &d) {
        d.type("gazp");
        d.box.lineEdit()->setCursorPosition(2);
    };
    const QString emptied = "id=0 code= name=";

    row("new", nothing, nothing, "", "", "0|||-1|0");
    row(
        "StockId", nothing, [](Desk &d) { d.box.setStockId("1"); }, "", "", "0|||-1|0");
    row(
        "StockCode clears the choice", chosen, [](Desk &d) { d.box.setStockCode("MX"); },
        "id=0 code= name=", "", "0|||-1|0");
    row(
        "StockCode clears half a name", half, [](Desk &d) { d.box.setStockCode("XE"); },
        "id=0 code= name=", "", "0|||-1|0");
    row(
        "BoardCode drops the choice from the list",
        [](Desk &d) {
            d.box.setStockCode("MX");
            d.box.setSecurityId("10");
        },
        [](Desk &d) { d.box.setBoardId("8"); }, "id=0 code= name=", "", "0|||-1|0");
    row(
        "the same codes again",
        [](Desk &d) {
            d.box.setStockCode("MX");
            d.box.setBoardCode("TQ");
            d.box.setSecurityId("10");
        },
        [](Desk &d) {
            d.box.setStockId("1");
            d.box.setBoardId("7");
        },
        "", "Gazprom", "10|GA|Gazprom|1|7");

    row(
        "SecurityId", nothing, [](Desk &d) { d.box.setSecurityId("11"); },
        "id=11 code=GN name=Gazprom neft name=Gazprom neft", "Gazprom neft",
        "11|GN|Gazprom neft|4|12");
    row(
        "SecurityId of none", chosen, [](Desk &d) { d.box.setSecurityId("99"); }, "", "Gazprom",
        "10|GA|Gazprom|3|7");
    row(
        "SecurityId that is no number", chosen, [](Desk &d) { d.box.setSecurityId("x"); }, "",
        "Gazprom", "10|GA|Gazprom|3|7");
    row(
        "SecurityId of a namesake", chosen, [](Desk &d) { d.box.setSecurityId("13"); },
        "id=13 code=GAF name=Gazprom name=Gazprom", "Gazprom", "13|GAF|Gazprom|1|7");
    row(
        "SecurityCode", chosen, [](Desk &d) { d.box.setSecurityCode("ls"); },
        "id=15 code=LS name=Lufthansa name=Lufthansa", "Lufthansa", "15|LS|Lufthansa|5|9");
    row(
        "SecurityCode that is held", [chosen](Desk &d) { chosen(d); },
        [](Desk &d) { d.box.setSecurityCode("GA"); }, "", "Gazprom", "10|GA|Gazprom|3|7");
    row(
        "SecurityName", nothing, [](Desk &d) { d.box.setSecurityName("LUFTHANSA"); },
        "id=15 code=LS name=Lufthansa name=LUFTHANSA", "LUFTHANSA", "15|LS|Lufthansa|-1|9");

    row(
        "typing key by key", nothing, [](Desk &d) { d.type("aer"); },
        "id=0 code= name=a id=0 code= name=ae id=0 code= name=aer", "aer", "0|||-1|3");
    row(
        "typing to the end of a name", [](Desk &d) { d.type("Aeroflo"); },
        [](Desk &d) { d.type("T"); }, "id=14 code=aF name=aeroflot name=AerofloT", "AerofloT",
        "14|aF|aeroflot|-1|8");
    row(
        "a typed namesake is the first", nothing, [](Desk &d) { d.box.setEditText("gazprom"); },
        "id=13 code=GAF name=Gazprom name=gazprom", "gazprom", "13|GAF|Gazprom|-1|7");
    row(
        "the chosen namesake, typed over",
        [chosen](Desk &d) {
            chosen(d);
            d.type("x");
        },
        [](Desk &d) { d.press(Qt::Key_Backspace); }, "id=10 code=GA name=Gazprom name=Gazprom",
        "Gazprom", "10|GA|Gazprom|3|7");
    row(
        "clearing key by key",
        [](Desk &d) {
            d.box.setSecurityId("14");
            d.box.lineEdit()->setText("ae");
        },
        [](Desk &d) { d.press(Qt::Key_Backspace, 2); }, "id=0 code= name=a id=0 code= name=", "",
        "0|||-1|0");

    row(
        "leaving a name in another case",
        [](Desk &d) {
            d.show();
            d.type("aerofloT");
            d.press(Qt::Key_Escape);
        },
        [](Desk &d) { d.next.setFocus(); }, "id=14 code=aF name=aeroflot name=aeroflot", "aeroflot",
        "14|aF|aeroflot|0|8");
    row(
        "leaving a name that two have",
        [](Desk &d) {
            d.show();
            d.box.setEditText("gazprom");
        },
        [](Desk &d) { d.next.setFocus(); }, "", "gazprom", "13|GAF|Gazprom|-1|7");
    row(
        "Enter on half a name",
        [half](Desk &d) {
            d.show();
            half(d);
            d.press(Qt::Key_Escape);
        },
        [](Desk &d) { d.press(Qt::Key_Return); }, "", "gazp", "0|||-1|2");

    row(
        "new sessions keep the choice", chosen, [](Desk &d) { d.securitiesAre(securities); }, "",
        "Gazprom", "10|GA|Gazprom|3|7");
    row(
        "new sessions move the choice", chosen,
        [](Desk &d) {
            d.securitiesAre({securities[0], {20, 1, 7, "AA", "Aa", {}, 20}});
        },
        "", "Gazprom", "10|GA|Gazprom|1|7");
    row(
        "new sessions rename the choice", chosen,
        [](Desk &d) {
            d.securitiesAre({{10, 1, 7, "GA", "Renamed", {}, 20}});
        },
        "", "Renamed", "10|GA|Renamed|0|7");
    row(
        "new sessions drop the choice, a namesake stays", chosen,
        [](Desk &d) {
            d.securitiesAre({securities[2], securities[3]});
        },
        qPrintable(emptied), "", "0|||-1|0");
    row(
        "all is gone", chosen, [](Desk &d) { d.securitiesAre({}); }, qPrintable(emptied), "",
        "0|||-1|0");
    row(
        "new sessions under half a name", half, [](Desk &d) { d.securitiesAre({securities[4]}); },
        "", "gazp", "0|||-1|2");
    row(
        "half a name that a new security has", half,
        [](Desk &d) {
            d.securitiesAre({{30, 1, 7, "GZ", "gazp", {}, 20}});
        },
        "", "gazp", "30||gazp|-1|2");
    row(
        "leaving what a new security has",
        [half](Desk &d) {
            d.show();
            half(d);
            d.press(Qt::Key_Escape);
            d.securitiesAre({{30, 1, 7, "GZ", "gazp", {}, 20}});
        },
        [](Desk &d) { d.next.setFocus(); }, "id=30 code=GZ name=gazp name=gazp", "gazp",
        "30|GZ|gazp|0|2");
    row(
        "a typed name keeps its row before a new namesake", [](Desk &d) { d.type("lufthansa"); },
        [](Desk &d) {
            d.securitiesAre({securities[5], {9, 1, 7, "L1", "Lufthansa", {}, 20}});
        },
        "", "lufthansa", "15|LS|Lufthansa|1|9");
    row(
        "a typed name whose row goes", [](Desk &d) { d.type("lufthansa"); },
        [](Desk &d) { d.securitiesAre({securities[0]}); }, "id=0 code= name=lufthansa", "lufthansa",
        "0|||-1|9");
    row(
        "selected text stays selected",
        [chosen](Desk &d) {
            chosen(d);
            d.box.lineEdit()->setSelection(5, -3);
        },
        [](Desk &d) {
            d.securitiesAre(securities);
            QCOMPARE(d.box.lineEdit()->selectedText(), QString("zpr"));
        },
        "", "Gazprom", "10|GA|Gazprom|3|2");
    row(
        "the host fails", chosen,
        [](Desk &d) {
            d.host->table("securities").failAtCell(9);
            QVERIFY_EXCEPTION_THROWN(d.model()->populate(), Exception);
        },
        "", "Gazprom", "10|GA|Gazprom|3|7");

    const auto showCodes = [](Desk &d) { d.model()->setDefaultDataRole(Role::SecurityCodeRole); };
    row("codes instead of names", chosen, showCodes, "id=10 code=GA name=GA name=GA", "GA",
        "10|GA|Gazprom|1|2");
    row(
        "codes under half a name",
        [half, chosen](Desk &d) {
            chosen(d);
            d.box.lineEdit()->clear();
            half(d);
        },
        showCodes, "id=0 code= name=gazp", "gazp", "0|||-1|2");
    row("codes, nothing chosen", nothing, showCodes, "", "", "0|||-1|0");

    row(
        "another model has the choice", chosen,
        [](Desk &d) { d.box.setSourceModel(new SecuritySelectorModel); }, "", "Gazprom",
        "10|GA|Gazprom|3|7");
    row(
        "another model lacks the choice", chosen,
        [](Desk &d) {
            d.host->table("securities").setRows({securities[5]});
            d.box.setSourceModel(new SecuritySelectorModel);
        },
        qPrintable(emptied), "", "0|||-1|0");
    row(
        "no model", chosen, [](Desk &d) { d.box.setSourceModel(nullptr); }, "", "Gazprom",
        "10|GA|Gazprom|3|7");
    row(
        "the model dies", chosen, [](Desk &d) { delete d.model(); }, qPrintable(emptied), "",
        "0|||-1|0");
    row(
        "the model dies under half a name", half, [](Desk &d) { delete d.model(); }, "", "gazp",
        "0|||-1|2");
}

void SecuritySelectorTest::reports()
{
    QFETCH(Steps, given);
    QFETCH(Steps, when);
    QFETCH(QString, reported);
    QFETCH(QString, text);
    QFETCH(QString, state);
    Desk desk(m_host.get());
    SecuritySelectorBox &box = desk.box;
    given(desk);
    desk.reports.take();
    when(desk);
    QCOMPARE(desk.reports.take(), reported);
    QCOMPARE(box.currentText(), text);
    QCOMPARE(QStringList({box.getSecurityId(), box.getSecurityCode(), box.getSecurityName(),
                          QString::number(box.currentIndex()),
                          QString::number(box.lineEdit()->cursorPosition())})
                 .join('|'),
             state);
    QVERIFY(box.currentIndex() < 0 ||
            box.itemData(box.currentIndex(), Role::SecurityIdRole).toString() ==
                box.getSecurityId());
}

void SecuritySelectorTest::keys_data()
{
    QTest::addColumn<Steps>("given");
    QTest::addColumn<Steps>("when");
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("state"); // text; index; rows lit in list and completer; focus
    const auto row = [](const char *name, const Steps &given, const Steps &when,
                        const char *reported, const char *state) {
        QTest::newRow(name) << given << when << reported << state;
    };
    const auto nothing = [](Desk &) {};
    const auto press = [](std::initializer_list<int> keys) {
        return [keys = QVector<int>(keys)](Desk &d) {
            for (const int key : keys)
                d.press(key);
        };
    };
    const auto chosen = [](Desk &d) { d.box.setSecurityId("10"); };
    const auto open = [chosen](Desk &d) {
        chosen(d);
        d.press(Qt::Key_F4);
    };
    const auto completing = [](Desk &d) { d.type("gaz"); };
    const char *const first = "id=14 code=aF name=aeroflot name=aeroflot "
                              "id=14 code=aF name=aeroflot";

    row("Down, closed", nothing, press({Qt::Key_Down}), first, "aeroflot|0|-|-|box");
    row("Up, closed", chosen, press({Qt::Key_Up}), "id=12 code=GA2 name=Gazprom",
        "Gazprom|2|-|-|box");
    row("Up at the first row", press({Qt::Key_Down}), press({Qt::Key_Up}), "",
        "aeroflot|0|-|-|box");
    row("Page down, closed", chosen, press({Qt::Key_PageDown}),
        "id=11 code=GN name=Gazprom neft name=Gazprom neft id=11 code=GN name=Gazprom neft",
        "Gazprom neft|4|-|-|box");
    row("Escape, closed", chosen, press({Qt::Key_Escape}), "", "Gazprom|3|-|-|box");
    row("Tab, closed", chosen, press({Qt::Key_Tab}), "", "Gazprom|3|-|-|next");

    row("opening lights the choice", nothing, open, "id=10 code=GA name=Gazprom name=Gazprom",
        "Gazprom|3|3|-|list");
    row("opening without a choice", nothing, press({Qt::Key_F4}), "", "|-1|-1|-|list");
    row("moving in the list", open, press({Qt::Key_Down, Qt::Key_Down, Qt::Key_Up}), "",
        "Gazprom|3|4|-|list");
    row("End in the list", open, press({Qt::Key_End}), "", "Gazprom|3|5|-|list");
    row("Home in the list", open, press({Qt::Key_Home}), "", "Gazprom|3|0|-|list");
    row("beyond the end", open, press({Qt::Key_End, Qt::Key_Down, Qt::Key_PageDown}), "",
        "Gazprom|3|5|-|list");
    row("Enter in the list", open, press({Qt::Key_End, Qt::Key_Return}),
        "id=15 code=LS name=Lufthansa name=Lufthansa id=15 code=LS name=Lufthansa",
        "Lufthansa|5|-|-|box");
    row("a namesake from the list", open, press({Qt::Key_Up, Qt::Key_Enter}),
        "id=12 code=GA2 name=Gazprom", "Gazprom|2|-|-|box");
    row(
        "Enter on the choice over other text",
        [open](Desk &d) {
            open(d);
            d.press(Qt::Key_Escape);
            d.box.setEditText("other");
            d.press(Qt::Key_F4);
        },
        press({Qt::Key_Return}),
        "id=10 code=GA name=Gazprom name=Gazprom id=10 code=GA name=Gazprom", "Gazprom|3|-|-|box");
    row("Escape in the list", open, press({Qt::Key_Home, Qt::Key_Escape}), "", "Gazprom|3|-|-|box");
    row("a letter in the list", open, press({Qt::Key_L}), "", "Gazprom|3|5|-|list");
    row(
        "new sessions under the open list",
        [open](Desk &d) {
            open(d);
            d.press(Qt::Key_Down);
        },
        [](Desk &d) {
            d.securitiesAre({securities[0], securities[1]});
        },
        "", "Gazprom|0|1|-|list");

    row("typing completes", nothing, completing,
        "id=0 code= name=g id=0 code= name=ga id=0 code= name=gaz", "gaz|-1|-|-1 of 4|box");
    row("Down in the completions", completing, press({Qt::Key_Down, Qt::Key_Down}),
        "id=13 code=GAF name=Gazprom name=Gazprom", "Gazprom|-1|-|1 of 4|box");
    row("Enter on a completion", completing, press({Qt::Key_Up, Qt::Key_Return}),
        "id=11 code=GN name=Gazprom neft name=Gazprom neft id=11 code=GN name=Gazprom neft",
        "Gazprom neft|4|-|-|box");
    row("Tab on a completion", completing, press({Qt::Key_Up, Qt::Key_Tab}),
        "id=11 code=GN name=Gazprom neft name=Gazprom neft", "Gazprom neft|4|-|-|next");
    row("Enter in the list without a choice", press({Qt::Key_F4}), press({Qt::Key_Return}), "",
        "|-1|-1|-|list");
    row("Enter on a completed namesake", completing,
        press({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}),
        "id=13 code=GAF name=Gazprom name=Gazprom id=10 code=GA name=Gazprom", "Gazprom|3|-|-|box");
    row("Escape in the completions", completing, press({Qt::Key_Escape}), "", "gaz|-1|-|-|box");
    row("Escape gives back what was typed", completing, press({Qt::Key_Up, Qt::Key_Escape}),
        "id=11 code=GN name=Gazprom neft name=Gazprom neft id=0 code= name=gaz", "gaz|-1|-|-|box");
    row("typing on from a completion", completing, press({Qt::Key_Up, Qt::Key_Backspace}),
        "id=11 code=GN name=Gazprom neft name=Gazprom neft id=0 code= name=Gazprom nef",
        "Gazprom nef|-1|-|-1 of 1|box");
    row("nothing left to complete", completing, press({Qt::Key_X}), "id=0 code= name=gazx",
        "gazx|-1|-|-|box");
    row(
        "new sessions under the completions", completing,
        [](Desk &d) {
            d.securitiesAre({securities[0], securities[1]});
        },
        "", "gaz|-1|-|-1 of 2|box");
    row(
        "new sessions while a completion is tried",
        [completing](Desk &d) {
            completing(d);
            d.press(Qt::Key_Up);
        },
        [](Desk &d) {
            d.securitiesAre({securities[1], securities[2], securities[5]});
            d.press(Qt::Key_Escape);
        },
        "id=0 code= name=gaz", "gaz|1|-|-|box");
    row(
        "new sessions leave nothing to complete", completing,
        [](Desk &d) { d.securitiesAre({securities[4]}); }, "", "gaz|-1|-|-|box");
}

void SecuritySelectorTest::keys()
{
    QFETCH(Steps, given);
    QFETCH(Steps, when);
    QFETCH(QString, reported);
    QFETCH(QString, state);
    Desk desk(m_host.get());
    desk.show();
    given(desk);
    desk.reports.take();
    when(desk);
    QCOMPARE(desk.reports.take(), reported);
    const QAbstractItemView *const popup = desk.box.completer()->popup();
    const QString completions =
        QString("%1 of %2").arg(popup->currentIndex().row()).arg(popup->model()->rowCount());
    const bool isOpen = desk.list()->isVisible();
    QCOMPARE(QStringList({desk.box.currentText(), QString::number(desk.box.currentIndex()),
                          isOpen ? QString::number(desk.listRow()) : QString("-"),
                          desk.isCompleting() ? completions : QString("-"),
                          isOpen                 ? "list"
                          : desk.next.hasFocus() ? "next"
                                                 : "box"})
                 .join('|'),
             state);
}

void SecuritySelectorTest::farRows()
{
    constexpr int Count = 100000;
    Rows many;
    for (int i = 0; i < Count; ++i)
        many << QVariantList{i + 1, 1, 7, QString("C%1").arg(i), QString("N%1").arg(i, 6), {}, 20};
    m_host->table("securities").setRows(many);
    Desk desk(m_host.get());
    desk.show();
    const QAbstractItemView &list = *desk.list();
    const auto shows = [](const QAbstractItemView &view, int row) {
        const QRect place = view.visualRect(view.model()->index(row, 0));
        return view.viewport()->rect().contains(place) && view.indexAt(place.center()).row() == row;
    };
    desk.box.setSecurityId("90000");
    desk.press(Qt::Key_F4);
    QCOMPARE(desk.listRow(), 89999);
    QVERIFY(shows(list, 89999));
    const int visible = list.viewport()->height() / list.sizeHintForRow(0);
    QCOMPARE(visible, desk.box.maxVisibleItems());
    for (const auto &step : QVector<QPair<int, int>>{{Qt::Key_End, Count - 1},
                                                     {Qt::Key_PageUp, Count - visible},
                                                     {Qt::Key_PageUp, Count - 2 * visible + 1},
                                                     {Qt::Key_Home, 0},
                                                     {Qt::Key_PageDown, visible - 1},
                                                     {Qt::Key_Up, visible - 2},
                                                     {Qt::Key_End, Count - 1}}) {
        desk.press(step.first);
        QCOMPARE(desk.listRow(), step.second);
        QVERIFY(shows(list, step.second));
        QVERIFY(list.selectionModel()->isRowSelected(step.second, {}));
    }
    desk.press(Qt::Key_Return);
    QCOMPARE(desk.box.getSecurityId(), QString::number(Count));

    // The same rows as completions.
    desk.box.lineEdit()->clear();
    desk.type("n");
    const QAbstractItemView &completions = *desk.box.completer()->popup();
    QCOMPARE(completions.model()->rowCount(), Count);
    desk.press(Qt::Key_Up);
    QCOMPARE(completions.currentIndex().row(), Count - 1);
    QVERIFY(shows(completions, Count - 1));
    desk.press(Qt::Key_Escape);
    QCOMPARE(desk.box.currentText(), QString("n"));
}

void SecuritySelectorTest::mouse()
{
    Desk desk(m_host.get());
    desk.box.setMaxVisibleItems(3);
    desk.show();
    desk.press(Qt::Key_F4);
    QAbstractItemView *const list = desk.list();
    const auto place = [](QAbstractItemView *view, int row) {
        return view->visualRect(view->model()->index(row, 0)).center();
    };
    // QComboBox takes a click that comes with the one that opened the list for a part of it.
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    QTest::mouseMove(list->viewport(), place(list, 1));
    QCOMPARE(desk.listRow(), 1);
    QVERIFY(list->selectionModel()->isRowSelected(1, {}));
    QCOMPARE(desk.reports.take(), QString());

    const QPoint point(4, 4);
    QWheelEvent wheel(point, list->viewport()->mapToGlobal(point), {}, {0, -1200}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(list->viewport(), &wheel);
    QCOMPARE(list->verticalScrollBar()->value(), list->verticalScrollBar()->maximum());
    QCOMPARE(list->indexAt(place(list, 5)).row(), 5);
    QCOMPARE(desk.box.currentIndex(), -1);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place(list, 5));
    QVERIFY(!list->isVisible());
    QCOMPARE(desk.reports.take(), QString("id=15 code=LS name=Lufthansa name=Lufthansa "
                                          "id=15 code=LS name=Lufthansa"));

    desk.box.lineEdit()->clear();
    desk.type("gaz");
    desk.reports.take();
    QAbstractItemView *const completions = desk.box.completer()->popup();
    QTest::mouseClick(completions->viewport(), Qt::LeftButton, {}, place(completions, 2));
    QCOMPARE(desk.reports.take(),
             QString("id=13 code=GAF name=Gazprom name=Gazprom id=10 code=GA name=Gazprom"));
    QCOMPARE(desk.box.currentIndex(), 3);
    QVERIFY(!desk.isCompleting());
}

void SecuritySelectorTest::hub()
{
    SecuritySelectorBox box;
    Properties hub;
    hub.connectAll(&box);
    QCOMPARE(QString(box.metaObject()->userProperty().name()), QString("SecurityId"));
    const auto held = [&hub] {
        QStringList texts;
        for (const char *const name : {"SecurityId", "Security", "SecurityName"})
            texts << hub.values()[name].toString();
        return texts.join('|');
    };
    hub.setValue("StockId", "1");
    hub.setValue("BoardId", "7");
    QCOMPARE(box.count(), 3);
    hub.setValue("SecurityId", "10");
    QCOMPARE(held(), QString("10|GA|Gazprom"));
    QTest::keyClick(&box, Qt::Key_Up);
    QCOMPARE(held(), QString("12|GA2|Gazprom"));
    m_host->table("securities").setRows({securities[0], securities[1], securities[2]});
    emit m_host->decoder()->aNewSessions();
    QCOMPARE(held(), QString("12|GA2|Gazprom"));
    m_host->table("securities").setRows({securities[0], securities[1]});
    emit m_host->decoder()->aNewSessions();
    QCOMPARE(held(), QString("0||"));
    hub.setValue("Security", "GN");
    QCOMPARE(held(), QString("11|GN|Gazprom neft"));
    hub.setValue("BoardId", "8");
    QCOMPARE(held(), QString("0||"));
    hub.setValue("SecurityName", "half");
    QCOMPARE(held(), QString("0||"));
    QCOMPARE(box.currentText(), QString("half"));
    QCOMPARE(box.getBoardCode(), QString("SP"));
}

void SecuritySelectorTest::noHost()
{
    ICore::install(nullptr);
    {
        Desk desk(m_host.get());
        desk.show();
        desk.box.setStockId("1");
        desk.box.setBoardId("7");
        desk.box.setSecurityId("10");
        desk.type("x");
        desk.press(Qt::Key_F4);
        desk.press(Qt::Key_End);
        desk.press(Qt::Key_Escape);
        desk.next.setFocus();
        QCOMPARE(desk.box.getStockId() + desk.box.getBoardId() + desk.box.getSecurityId(),
                 QString("000"));
        QCOMPARE(desk.box.lineEdit()->toolTip(), QString("Not in the list"));
    }
    ICore::install(m_host.get());
}

void SecuritySelectorTest::destroyedWithItsPopupsOpen()
{
    for (const bool isList : {true, false}) {
        auto desk = std::make_unique<Desk>(m_host.get());
        desk->show();
        if (isList)
            desk->press(Qt::Key_F4);
        else
            desk->type("g");
        QVERIFY(QApplication::activePopupWidget());
        delete desk->model();
        QCOMPARE(desk->box.count(), 0);
        desk.reset();
        QVERIFY(!QApplication::activePopupWidget());
    }
}

void SecuritySelectorTest::failingHostUnderABox()
{
    TestTable &table = m_host->table("securities");
    const int before = table.cellReads();
    SecuritySelectorBox box;
    box.setSecurityId("10");
    const int cells = table.cellReads() - before;
    for (int cell = 1; cell <= cells; cell += 3) {
        table.failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(SecuritySelectorBox(), Exception);
        table.failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(box.setSourceModel(new SecuritySelectorModel), Exception);
        QCOMPARE(box.getSecurityId(), QString("10"));
        QCOMPARE(box.count(), 6);
    }
}

QTEST_MAIN(SecuritySelectorTest)
#include "tst_securityselector.moc"
