#include <formkit/partnerselectorbox.h>
#include <formkit/properties.h>
#include <hostapi/exception.h>

#include <support/reports.h>
#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QLineEdit>
#include <QStandardItemModel>

#include <functional>
#include <memory>

namespace {

using Rows = QVector<QVariantList>;

// name, client_code, mox_code
const Rows partners = {{"Beta Bank", "C2", "BB"},        {"Alpha Bank", "C1", "AA"},
                       {"Alpha in small", " ", "aa"},    {"No code", "C3", {}},
                       {"Blank code", "C4", "   "},      {"Gamma", {}, "GG"},
                       {"Second of a code", "C5", "BB"}, {{}, "C6", "NN"}};

QString column(const QAbstractItemModel &model, int column)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts << model.index(row, column).data().toString();
    return texts.join(',');
}

class BoxReports : public Reports<PartnerSelectorBox>
{
public:
    explicit BoxReports(PartnerSelectorBox *box)
        : Reports(box, {{"partner", &PartnerSelectorBox::changedPartner},
                        {"name", &PartnerSelectorBox::changedPartnerName}})
    {
    }
};

} // namespace

using Steps = std::function<void(PartnerSelectorBox &, TestHost &)>;
Q_DECLARE_METATYPE(Steps)

class PartnerSelectorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void list();
    void lines_data();
    void lines();
    void riskAddress_data();
    void riskAddress();
    void reports_data();
    void reports();
    void failingHost();
    void noHost();
    void hub();
    void destroyedWithItsPopupsOpen();

private:
    std::unique_ptr<TestHost> m_host;
};

void PartnerSelectorTest::init()
{
    StrictTest::init();
    m_host = std::make_unique<TestHost>();
    m_host->table("gx.diler").setRows(partners);
}

void PartnerSelectorTest::cleanup()
{
    QCOMPARE(m_host->table("gx.diler").references(), 0);
    QVERIFY(!m_host->table("gx.diler").isLocked());
    m_host.reset();
    StrictTest::cleanup();
}

void PartnerSelectorTest::list()
{
    PartnerSelectorBox box;
    QCOMPARE(column(*box.model(), 0), QString("AA,BB,BB,GG,NN,aa"));
    QCOMPARE(column(*box.model(), 2),
             QString("Alpha Bank,Beta Bank,Second of a code,Gamma,,Alpha in small"));
    QVERIFY(qobject_cast<QStandardItemModel *>(box.model()));
    QCOMPARE(box.model()->parent(), &box);
    QCOMPARE(box.completer()->model(), box.model());
    QCOMPARE(box.comboBoxValidator()->model(), box.model());
    QCOMPARE(box.sizeAdjustPolicy(), QComboBox::AdjustToContents);
    QCOMPARE(box.styleSheet(), QString("QComboBox QAbstractItemView {min-width: 40em;}"));
    QCOMPARE(box.modelColumn(), 0);
    box.showPopup();
    QCOMPARE(box.modelColumn(), 1);
    QVERIFY(box.view()->width() >= 40 * box.view()->fontMetrics().height() / 2);
    box.hidePopup();
    QCOMPARE(box.modelColumn(), 0);
}

void PartnerSelectorTest::lines_data()
{
    QTest::addColumn<int>("codeLength");
    QTest::addColumn<int>("blanks");
    QTest::newRow("1") << 1 << 21;
    QTest::newRow("21") << 21 << 1;
    QTest::newRow("22") << 22 << 0;
    QTest::newRow("25") << 25 << 0;
}

void PartnerSelectorTest::lines()
{
    QFETCH(int, codeLength);
    QFETCH(int, blanks);
    const QString code(codeLength, 'X');
    m_host->table("gx.diler").setRows({{"%1 name %2", "C", code}});
    PartnerSelectorBox box;
    QCOMPARE(box.model()->index(0, 1).data().toString(),
             code + QString(blanks, ' ') + "%1 name %2");
}

void PartnerSelectorTest::riskAddress_data()
{
    QTest::addColumn<QVariant>("property");
    QTest::addColumn<QString>("codes");
    const QString all = "AA,BB,BB,GG,NN,aa";
    const QString clients = "AA,BB,BB,NN";
    QTest::newRow("absent") << QVariant() << all;
    QTest::newRow("true") << QVariant(true) << clients;
    QTest::newRow("false") << QVariant(false) << all;
    QTest::newRow("text") << QVariant("true") << clients;
    QTest::newRow("text of no") << QVariant("false") << all;
    QTest::newRow("1") << QVariant(1) << clients;
    QTest::newRow("no boolean") << QVariant(QVariantList{true}) << all;
}

void PartnerSelectorTest::riskAddress()
{
    QFETCH(QVariant, property);
    QFETCH(QString, codes);
    QWidget form;
    auto *const first = new PartnerSelectorBox(&form);
    form.setProperty("RiskAddress", property);
    PartnerSelectorBox *const second = new PartnerSelectorBox(&form);
    QCOMPARE(column(*second->model(), 0), codes);
    QCOMPARE(column(*first->model(), 0), QString("AA,BB,BB,GG,NN,aa"));
    first->populate();
    QCOMPARE(column(*first->model(), 0), codes);
}

void PartnerSelectorTest::reports_data()
{
    QTest::addColumn<Steps>("given");
    QTest::addColumn<Steps>("when");
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("state"); // text; partner and its name; current index; caret
    using Box = PartnerSelectorBox;
    const auto row = [](const char *name, const Steps &given, const Steps &when,
                        const char *reported, const char *state) {
        QTest::newRow(name) << given << when << reported << state;
    };
    const auto nothing = [](Box &, TestHost &) {};
    const auto chosen = [](Box &b, TestHost &) { b.setPartner("BB"); };
    const auto half = [](Box &b, TestHost &) {
        QTest::keyClicks(&b, "Bx");
        b.lineEdit()->setCursorPosition(1);
    };
    const auto populate = [](Box &b, TestHost &) { b.populate(); };
    const auto hostHas = [](const Rows &rows) {
        return [rows](Box &b, TestHost &host) {
            host.table("gx.diler").setRows(rows);
            b.populate();
        };
    };
    const auto press = [](std::initializer_list<int> keys) {
        return [keys = QVector<int>(keys)](Box &b, TestHost &) {
            for (const int key : keys) {
                QWidget *const popup = QApplication::activePopupWidget();
                QWidget *const view = popup && popup->focusWidget() ? popup->focusWidget() : popup;
                QTest::keyClick(view ? view : &b, Qt::Key(key));
            }
        };
    };

    row("new", nothing, nothing, "", "|||0|0");
    row("setPartner", nothing, chosen, "partner=BB name=Beta Bank", "BB|BB|Beta Bank|1|2");
    row(
        "in another case", nothing, [](Box &b, TestHost &) { b.setPartner("gg"); },
        "partner=GG name=Gamma", "GG|GG|Gamma|3|2");
    row(
        "not listed", chosen, [](Box &b, TestHost &) { b.setPartner("ZZ"); },
        "partner=ZZ name=", "ZZ|ZZ||1|2");
    row(
        "held already",
        [half, chosen](Box &b, TestHost &h) {
            half(b, h);
            chosen(b, h);
        },
        chosen, "", "BB|BB|Beta Bank|1|2");
    row(
        "nothing", chosen, [](Box &b, TestHost &) { b.setPartner({}); },
        "partner= name=", "|||-1|0");

    row(
        "typing", nothing, [](Box &b, TestHost &) { QTest::keyClicks(&b, "BB"); },
        "partner=B name= partner=BB name=Beta Bank", "BB|BB|Beta Bank|0|2");
    row(
        "typing another case", nothing, [](Box &b, TestHost &) { b.setEditText("bB"); },
        "partner=bB name=", "bB|bB||0|2");
    row(
        "Enter on another case", [](Box &b, TestHost &) { b.setEditText("bB"); },
        press({Qt::Key_Return}), "", "bB|bB||0|2");
    row(
        "Enter on the only one of another case", [](Box &b, TestHost &) { b.setEditText("gG"); },
        press({Qt::Key_Return}), "partner=GG name=Gamma", "GG|GG|Gamma|3|2");
    row(
        "clearing", chosen, [](Box &b, TestHost &) { b.lineEdit()->clear(); },
        "partner= name=", "|||-1|0");

    row("opening and closing", chosen, press({Qt::Key_F4, Qt::Key_Escape}), "",
        "BB|BB|Beta Bank|1|2");
    row("opening and closing over half a code", half,
        press({Qt::Key_F4, Qt::Key_Down, Qt::Key_Escape}), "", "Bx|Bx||0|1");
    row("choosing from the list", chosen, press({Qt::Key_F4, Qt::Key_End, Qt::Key_Return}),
        "partner=aa name=Alpha in small partner=aa name=Alpha in small",
        "aa|aa|Alpha in small|5|2");
    row("the second of a code from the list", chosen,
        press({Qt::Key_F4, Qt::Key_Down, Qt::Key_Return}), "partner=BB name=Second of a code",
        "BB|BB|Second of a code|2|2");
    const auto second = [](Box &b, TestHost &) { b.setCurrentIndex(2); };
    row("the second of a code by its row", nothing, second, "partner=BB name=Second of a code",
        "BB|BB|Second of a code|2|2");
    row("population keeps the second of a code", second,
        hostHas({partners[1], partners[0], partners[6]}), "", "BB|BB|Second of a code|2|2");
    row(
        "typing over the second of a code", second,
        [](Box &b, TestHost &) {
            QTest::keyClicks(&b, "x");
            QTest::keyClick(&b, Qt::Key_Backspace);
        },
        "partner=BBx name= partner=BB name=Second of a code", "BB|BB|Second of a code|2|2");

    row(
        "a completion", [](Box &b, TestHost &) { QTest::keyClicks(&b, "g"); },
        press({Qt::Key_Down, Qt::Key_Return}), "partner=GG name=Gamma partner=GG name=Gamma",
        "GG|GG|Gamma|3|2");

    row("population picks nobody", nothing, populate, "", "|||0|0");
    row(
        "population after a cleared choice",
        [](Box &b, TestHost &) {
            b.setPartner("BB");
            b.setPartner({});
        },
        populate, "", "|||0|0");
    row("population keeps the choice", chosen, populate, "", "BB|BB|Beta Bank|1|2");
    row("population moves the choice", chosen,
        hostHas({partners[0], {"A", "C", "A"}, {"B", "C", "B"}}), "", "BB|BB|Beta Bank|2|2");
    row("population renames the choice", chosen, hostHas({{"New", "C", "BB"}}), "",
        "BB|BB|New|0|2");
    row("population drops the choice", chosen, hostHas({partners[1]}), "partner= name=", "|||-1|0");
    row("population keeps half a code", half, populate, "", "Bx|Bx||-1|1");
    row(
        "population over a choice that is being typed over",
        [chosen](Box &b, TestHost &h) {
            chosen(b, h);
            QTest::keyClicks(&b, "x");
        },
        populate, "", "BBx|BBx||-1|3");
    row("population names a typed code", half, hostHas({{"New", "C", "Bx"}}), "", "Bx|Bx|New|-1|1");
    row(
        "Enter on a code that a population has brought",
        [half](Box &b, TestHost &host) {
            half(b, host);
            host.table("gx.diler").setRows({{"New", "C", "Bx"}});
            b.completer()->popup()->hide();
            b.populate();
        },
        press({Qt::Key_Return}), "partner=Bx name=New", "Bx|Bx|New|0|1");
    row(
        "population drops a typed code", [](Box &b, TestHost &) { QTest::keyClicks(&b, "GG"); },
        hostHas({partners[0]}), "partner=GG name=", "GG|GG||-1|2");
    row(
        "population under the open list",
        [chosen](Box &b, TestHost &h) {
            chosen(b, h);
            b.showPopup();
        },
        [](Box &b, TestHost &) {
            b.populate();
            QCOMPARE(b.modelColumn(), 1);
            QVERIFY(b.view()->isVisible());
            b.hidePopup();
        },
        "", "BB|BB|Beta Bank|1|2");
    row(
        "population under the completions", [](Box &b, TestHost &) { QTest::keyClicks(&b, "b"); },
        [](Box &b, TestHost &host) {
            host.table("gx.diler").addRow({"Third", "C", "bc"});
            b.populate();
            QVERIFY(b.completer()->popup()->isVisible());
            QCOMPARE(b.completer()->completionCount(), 3);
        },
        "", "b|b||-1|1");
}

void PartnerSelectorTest::reports()
{
    QFETCH(Steps, given);
    QFETCH(Steps, when);
    QFETCH(QString, reported);
    QFETCH(QString, state);
    PartnerSelectorBox box;
    box.show();
    QVERIFY(QTest::qWaitForWindowActive(&box));
    box.setFocus();
    given(box, *m_host);
    BoxReports reports(&box);
    when(box, *m_host);
    QCOMPARE(reports.take(), reported);
    QCOMPARE(QStringList({box.currentText(), box.getPartner(), box.getPartnerName(),
                          QString::number(box.currentIndex()),
                          QString::number(box.lineEdit()->cursorPosition())})
                 .join('|'),
             state);
}

void PartnerSelectorTest::failingHost()
{
    TestTable &table = m_host->table("gx.diler");
    const int before = table.cellReads();
    PartnerSelectorBox box;
    const int cells = table.cellReads() - before;
    box.setPartner("BB");
    const QAbstractItemModel *const model = box.model();
    for (int cell = 1; cell <= cells; ++cell) {
        table.failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(box.populate(), Exception);
        table.failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(PartnerSelectorBox(), Exception);
        QCOMPARE(box.model(), model);
        QCOMPARE(box.getPartner() + box.currentText(), QString("BBBB"));
    }
}

void PartnerSelectorTest::noHost()
{
    ICore::install(nullptr);
    PartnerSelectorBox box;
    box.show();
    box.populate();
    box.setPartner("AA");
    box.showPopup();
    box.hidePopup();
    QCOMPARE(box.getPartner() + box.getPartnerName(), QString("AA"));
    ICore::install(m_host.get());
}

void PartnerSelectorTest::hub()
{
    PartnerSelectorBox box;
    Properties hub;
    hub.connectAll(&box);
    hub.setValue("Partner", "gg");
    QCOMPARE(hub.values()["Partner"].toString(), QString("GG"));
    QCOMPARE(hub.values()["PartnerName"].toString(), QString("Gamma"));
    QCOMPARE(QString(box.metaObject()->userProperty().name()), QString("Partner"));
}

void PartnerSelectorTest::destroyedWithItsPopupsOpen()
{
    for (const bool isList : {true, false}) {
        auto box = std::make_unique<PartnerSelectorBox>();
        box->show();
        if (isList)
            box->showPopup();
        else
            QTest::keyClicks(box.get(), "b");
        QVERIFY(QApplication::activePopupWidget());
        box.reset();
        QVERIFY(!QApplication::activePopupWidget());
    }
}

QTEST_MAIN(PartnerSelectorTest)
#include "tst_partnerselector.moc"
