#include <formkit/properties.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>
#include <formkit/stockselectormodel.h>
#include <hostapi/exception.h>

#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemModelTester>
#include <QLineEdit>

#include <memory>

namespace {

class CheckList : public StockSelectorModel
{
public:
    CheckList() { m_checkable = true; }
    bool filter(const Record &record) const override
    {
        return record.field(2).toString() != "XNAS";
    }
};

QString column(const QAbstractItemModel &model, int role)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts << model.index(row, 0).data(role).toString();
    return texts.join(' ');
}

// What a box has reported since the last time, in order.
template <typename Box> class Reports
{
public:
    using Report = void (Box::*)(const QString &);
    Reports(Box *box, Report id, Report code, Report text)
    {
        for (const auto &report : {std::pair("id=", id), {"code=", code}, {"text=", text}})
            QObject::connect(
                box, report.second, box,
                [this, name = report.first](const QString &value) { m_log << name + value; });
    }
    QString take() { return std::exchange(m_log, {}).join(' '); }

private:
    QStringList m_log;
};

} // namespace

class StockSelectorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void rows();
    void failingHost();
    void missingHost();
    void checkList();
    void setters_data();
    void setters();
    void typing_data();
    void typing();
    void anotherModel();
    void twoBoxesOnOneHub();
    void codeBox();

private:
    std::unique_ptr<TestHost> m_host;
};

void StockSelectorTest::init()
{
    StrictTest::init();
    m_host = std::make_unique<TestHost>();
    m_host->table("stocks").setRows(
        {{0, "Zero", "NULL"}, {1, "Nasdaq", "XNAS"}, {2, "Xetra", "XETR"}});
}

void StockSelectorTest::cleanup()
{
    m_host.reset(); // warns of locks and rows not given back
    StrictTest::cleanup();
}

void StockSelectorTest::rows()
{
    m_host->table("stocks").setRows(
        {{1, "one", "b"}, {2, "two", "B"}, {4, "four", "b"}, {6, {}, {}}});
    StockSelectorModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(model.rowCount(), 0);
    for (int visit = 0; visit < 2; ++visit) {
        model.populate();
        QCOMPARE(column(model, 257), QString("6 2 4 1"));
        QCOMPARE(column(model, 258), QString(" B b b"));
        QCOMPARE(column(model, Qt::EditRole), QString(" two four one"));
    }
    QVERIFY(!model.setData(model.index(0, 0), Qt::Unchecked, Qt::CheckStateRole));
    QVERIFY(!model.index(0, 0).data(Qt::CheckStateRole).isValid());
    QCOMPARE(model.flags(model.index(0, 0)), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    StockSelectorBox box;
    QCOMPARE(column(*box.model(), Qt::DisplayRole), QString(" four one two"));
}

void StockSelectorTest::failingHost()
{
    StockSelectorModel model;
    model.populate();
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    StockSelectorBox_Code box;
    m_host->table("stocks").failAtCell(5);
    QVERIFY_EXCEPTION_THROWN(model.populate(), Exception);
    QCOMPARE(resets.count(), 1);
    QCOMPARE(column(model, StockSelectorModel::IdRole), QString("0 2 1"));
    m_host->table("stocks").failAtCell(5);
    QVERIFY_EXCEPTION_THROWN(box.populate(), Exception);
    QVERIFY(!m_host->table("stocks").isLocked());
}

void StockSelectorTest::missingHost()
{
    ICore::install(nullptr);
    StockSelectorBox box;
    StockSelectorBox_Code codes;
    QTest::keyClicks(&box, "x");
    QCOMPARE(box.getStockId(), QString("0"));
    QCOMPARE(box.count() + codes.count(), 0);
    ICore::install(m_host.get());
}

void StockSelectorTest::checkList()
{
    m_host->table("stocks").addRow({7, "Athens", "XATH"});
    CheckList model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    QString sent;
    connect(&model, &StockSelectorModel::stocksChanged, this, [&](bool enable, const Stocks &keys) {
        sent = enable ? "filter" : "all";
        for (const qint32 key : keys)
            sent += ' ' + QString::number(key);
    });
    const auto report = [&] {
        model.sendStocksChanged();
        return sent;
    };
    QCOMPARE(report(), QString("all"));
    QVERIFY(model.setData(QModelIndex(), Qt::Unchecked, Qt::CheckStateRole));
    model.populate();
    QCOMPARE(report(), QString("all 0 2 7"));
    QCOMPARE(model.index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
    QVERIFY(model.flags(model.index(0, 0)) & Qt::ItemIsUserCheckable);
    QVERIFY(!model.setData(model.index(2, 0), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(model.setData(model.index(2, 0), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(changes.count(), 1);
    QVERIFY(changes[0][2].value<QVector<int>>().isEmpty());
    QCOMPARE(report(), QString("filter 0 7"));
    QVERIFY(model.setData(QModelIndex(), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(report(), QString("filter"));
    QVERIFY(model.setData(QModelIndex(), 1, Qt::CheckStateRole));
    QCOMPARE(report(), QString("all 0 2 7"));
}

void StockSelectorTest::setters_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("reported");
    const auto row = [](const char *name, const char *property, const char *value,
                        const char *reported) {
        QTest::newRow(name) << QByteArray(property) << value << reported;
    };
    row("id", "StockId", "2", "id=2 code=XETR text=Xetra");
    row("unknown id", "StockId", "4", "");
    row("no number: id 0", "StockId", "x1", "id=0 code=NULL text=Zero");
    row("code in another case", "StockCode", "xetr", "id=2 code=XETR text=Xetra");
    row("part of a code", "StockCode", "XET", "");
    row("the same again", "StockId", "1", "");
    row("read-only text", "Stock", "Xetra", "");
}

void StockSelectorTest::setters()
{
    QFETCH(QByteArray, property);
    QFETCH(QString, value);
    QFETCH(QString, reported);
    StockSelectorBox box;
    QCOMPARE(box.getStockId() + box.getStockCode() + box.getStock(), QString("0"));
    box.setStockId("1");
    Reports<StockSelectorBox> reports(&box, &StockSelectorBox::stockIdChanged,
                                      &StockSelectorBox::stockCodeChanged,
                                      &StockSelectorBox::stockChanged);
    box.setProperty(property, value);
    QCOMPARE(reports.take(), reported);
    QCOMPARE(box.getStock(), reported.isEmpty() ? QString("Nasdaq") : reported.section('=', -1));
}

void StockSelectorTest::typing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("id");
    QTest::newRow("the name") << "Xetra"
                              << "id=2 code=XETR text=Xetra"
                              << "2";
    QTest::newRow("half the name") << "Xet"
                                   << "id=0 code= text=Xet"
                                   << "0";
    QTest::newRow("the name in another case") << "xETRA"
                                              << "id=0 code= text=xETRA"
                                              << "2";
    QTest::newRow("nothing") << ""
                             << "id=0 code= text="
                             << "0";
}

void StockSelectorTest::typing()
{
    QFETCH(QString, text);
    QFETCH(QString, id);
    StockSelectorBox box;
    box.setStockId("1");
    Reports<StockSelectorBox> reports(&box, &StockSelectorBox::stockIdChanged,
                                      &StockSelectorBox::stockCodeChanged,
                                      &StockSelectorBox::stockChanged);
    box.lineEdit()->setText(text);
    QTEST(reports.take(), "reported");
    QCOMPARE(box.getStockId(), id);
    QCOMPARE(box.getStock(), text);
    QCOMPARE(box.currentIndex() < 0, text.isEmpty());
    // Choosing the row that was current shows its name again.
    box.setStockId("1");
    QCOMPARE(box.getStock(), QString("Nasdaq"));
}

void StockSelectorTest::anotherModel()
{
    StockSelectorBox box;
    const QPointer<StockSelectorModel> first = new StockSelectorModel;
    box.setSourceModel(first);
    QCOMPARE(box.currentIndex(), -1);
    box.setStockId("2");
    auto *const second = new CheckList;
    box.setSourceModel(second);
    QVERIFY(!first);
    QCOMPARE(column(*box.model(), Qt::DisplayRole), QString("Xetra Zero"));
    QCOMPARE(box.getStockId(), QString("2"));
    m_host->table("stocks").setRows({{5, "Athens", "XATH"}});
    box.setSourceModel(second);
    QCOMPARE(box.count(), 1);
    QCOMPARE(box.getStockId(), QString("0"));
}

void StockSelectorTest::twoBoxesOnOneHub()
{
    m_host->table("stocks").setRows({{1, "Nasdaq", "XNAS"}, {2, "Xetra", "XETR"}});
    StockSelectorBox box, twin;
    Properties hub;
    hub.connectAll(&box);
    hub.connectAll(&twin);
    const auto held = [&hub] {
        const Values values = hub.values();
        return values["StockId"] + ' ' + values["StockCode"] + ' ' + values["Stock"];
    };
    hub.setValue("StockId", "2");
    QCOMPARE(held(), QString("2 XETR Xetra"));
    QCOMPARE(twin.getStock(), QString("Xetra"));
    hub.setValue("StockCode", "XNAS");
    QCOMPARE(held(), QString("1 XNAS Nasdaq"));
    QTest::keyClick(&twin, Qt::Key_Down);
    QCOMPARE(box.getStock(), QString("Xetra"));
    twin.lineEdit()->setText("half");
    QCOMPARE(held(), QString("0  half"));
}

void StockSelectorTest::codeBox()
{
    StockSelectorBox_Code box;
    Reports<StockSelectorBox_Code> reports(&box, &StockSelectorBox_Code::setProp_StockId,
                                           &StockSelectorBox_Code::setProp_StockCode,
                                           &StockSelectorBox_Code::setProp_Stock);
    QVERIFY(!Properties().connectAll(&box));
    QCOMPARE(column(*box.model(), Qt::DisplayRole), QString("NULL XNAS XETR"));
    QCOMPARE(column(*box.model(), Qt::UserRole), QString("0 1 2"));
    QCOMPARE(column(*box.model(), Qt::UserRole + 1), QString("Zero Nasdaq Xetra"));
    QCOMPARE(box.currentText(), QString());
    QTest::keyClick(&box, Qt::Key_Down);
    QCOMPARE(reports.take(), QString("id=0 code=0 text=NULL id=0 code=0"));
    box.prop_StockId_changed("02");
    QCOMPARE(reports.take(), QString("id=2 code=2 text=XETR"));
    box.prop_StockId_changed("4");
    QCOMPARE(reports.take(), QString());
    box.lineEdit()->setText("xnas");
    QCOMPARE(reports.take(), QString("id=0 text= text=xnas"));
    box.lineEdit()->clear();
    QCOMPARE(box.currentIndex(), -1);
    box.populate();
    QVERIFY(reports.take().endsWith(" id=0"));
    QCOMPARE(box.currentIndex(), 0);
}

QTEST_MAIN(StockSelectorTest)
#include "tst_stockselector.moc"
