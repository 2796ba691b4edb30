#include <formkit/partnerselectorbox.h>
#include <formkit/properties.h>
#include <hostapi/exception.h>

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

} // namespace

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
