#include <formkit/properties.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>
#include <formkit/stockselectormodel.h>
#include <hostapi/exception.h>

#include <support/reports.h>
#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemModelTester>
#include <QCompleter>
#include <QLineEdit>

#include <memory>

namespace {

using Rows = QVector<QVariantList>;

const Rows exchanges = {{1, "Nasdaq", "XNAS"},
                        {2, "Xetra", "XETR"},
                        {3, "Moscow Exchange", "MISX"},
                        {5, "Athens", "XATH"}};

class CheckList : public StockSelectorModel
{
public:
    CheckList() { m_checkable = true; }
    QTimer &timer() { return m_timer; }
};

class WithoutXetra : public StockSelectorModel
{
public:
    bool filter(const Record &record) const override
    {
        return record.field(record.table()->columnIndex("stock_code")).toString() != "XETR";
    }
};

QString column(const QAbstractItemModel &model, int role)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts << model.index(row, 0).data(role).toString();
    return texts.join(' ');
}

class BoxReports : public Reports<StockSelectorBox>
{
public:
    explicit BoxReports(StockSelectorBox *box)
        : Reports(box, {{"id", &StockSelectorBox::stockIdChanged},
                        {"code", &StockSelectorBox::stockCodeChanged},
                        {"text", &StockSelectorBox::stockChanged}})
    {
    }
};

class CodeReports : public Reports<StockSelectorBox_Code>
{
public:
    explicit CodeReports(StockSelectorBox_Code *box)
        : Reports(box, {{"id", &StockSelectorBox_Code::setProp_StockId},
                        {"code", &StockSelectorBox_Code::setProp_StockCode},
                        {"text", &StockSelectorBox_Code::setProp_Stock}})
    {
    }
};

} // namespace

class StockSelectorTest : public StrictTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void rows();
    void filteredAndEmpty();
    void failingHost();
    void missingTable();
    void noHost();
    void checkList();
    void plainListRefusesChecks();

    void newBox();
    void choosing();
    void typing_data();
    void typing();
    void setters_data();
    void setters();
    void chosenAgainOverTypedText();
    void anotherModel();
    void twoBoxesOnOneHub();

    void codeBox();
    void codeBoxReports();

private:
    std::unique_ptr<TestHost> m_host;
};

void StockSelectorTest::init()
{
    StrictTest::init();
    m_host = std::make_unique<TestHost>();
    m_host->table("stocks").setRows(exchanges);
}

void StockSelectorTest::cleanup()
{
    QCOMPARE(m_host->table("stocks").references(), 0);
    QVERIFY(!m_host->table("stocks").isLocked());
    m_host.reset();
    StrictTest::cleanup();
}

void StockSelectorTest::rows()
{
    m_host->table("stocks").setRows(
        {{1, "one", "b"}, {2, "two", "B"}, {3, "three", "a"}, {4, "four", "b"}, {6, {}, {}}});
    StockSelectorModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(model.rowCount(), 0);
    for (int visit = 0; visit < 2; ++visit) {
        model.populate();
        QCOMPARE(column(model, StockSelectorModel::IdRole), QString("6 2 3 4 1"));
        QCOMPARE(column(model, StockSelectorModel::CodeRole), QString(" B a b b"));
        QCOMPARE(column(model, Qt::EditRole), QString(" two three four one"));
    }
    QVERIFY(!model.index(0, 0).data(Qt::CheckStateRole).isValid());
    QVERIFY(!model.data(QModelIndex(), StockSelectorModel::IdRole).isValid());
    QCOMPARE(model.index(0, 0).data(257).toInt(), 6);
    QCOMPARE(model.index(1, 0).data(258).toString(), QString("B"));
}

void StockSelectorTest::filteredAndEmpty()
{
    WithoutXetra model;
    model.populate();
    QCOMPARE(column(model, StockSelectorModel::CodeRole), QString("MISX XATH XNAS"));
    m_host->table("stocks").setRows({});
    QCOMPARE(model.rowCount(), 3);
    model.populate();
    QCOMPARE(model.rowCount(), 0);
}

void StockSelectorTest::failingHost()
{
    StockSelectorModel model;
    model.populate();
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    m_host->table("stocks").failAtCell(5);
    QVERIFY_EXCEPTION_THROWN(model.populate(), Exception);
    QCOMPARE(resets.count(), 1);
    QCOMPARE(column(model, StockSelectorModel::IdRole), QString("3 5 2 1"));
    StockSelectorBox_Code box;
    m_host->table("stocks").failAtCell(5);
    QVERIFY_EXCEPTION_THROWN(box.populate(), Exception);
    QCOMPARE(box.count(), 4);
    QVERIFY(!m_host->table("stocks").isLocked());
}

void StockSelectorTest::missingTable()
{
    m_host->removeTable("stocks");
    expectWarning("ICore::table: the host has no table \"stocks\"");
    StockSelectorModel model;
    model.populate();
    QCOMPARE(model.rowCount(), 0);
}

void StockSelectorTest::noHost()
{
    ICore::install(nullptr);
    StockSelectorBox box;
    StockSelectorBox_Code codes;
    QCOMPARE(box.count() + codes.count(), 0);
    box.setStockId("1");
    QTest::keyClicks(&box, "x");
    QCOMPARE(box.getStockId(), QString("0"));
    ICore::install(m_host.get());
}

void StockSelectorTest::checkList()
{
    CheckList model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    bool enable = true;
    Stocks keys;
    connect(&model, &StockSelectorModel::stocksChanged, this, [&](bool on, const Stocks &checked) {
        enable = on;
        keys = checked;
    });
    const auto ids = [&keys] {
        QStringList texts;
        for (const qint32 id : keys)
            texts << QString::number(id);
        return texts.join(' ');
    };

    model.sendStocksChanged();
    QVERIFY(!enable);
    QCOMPARE(ids(), QString());
    QVERIFY(model.setData(QModelIndex(), Qt::Unchecked, Qt::CheckStateRole));
    model.populate();
    resets.clear();
    QCOMPARE(model.flags(model.index(0, 0)),
             Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    QCOMPARE(model.index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));

    QVERIFY(!model.setData(model.index(0, 0), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(model.setData(model.index(0, 0), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toModelIndex(), model.index(0, 0));
    QVERIFY(changes[0][2].value<QVector<int>>().isEmpty());
    model.timer().setSingleShot(true);
    model.timer().start(0);
    QTRY_VERIFY(enable);
    QCOMPARE(ids(), QString("1 2 5"));

    QVERIFY(model.setData(QModelIndex(), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(resets.count(), 1);
    model.sendStocksChanged();
    QCOMPARE(ids(), QString());
    QVERIFY(model.setData(QModelIndex(), 1, Qt::CheckStateRole));
    model.sendStocksChanged();
    QVERIFY(!enable);
    QCOMPARE(ids(), QString("1 2 3 5"));
}

void StockSelectorTest::plainListRefusesChecks()
{
    StockSelectorModel model;
    model.populate();
    QVERIFY(!model.setData(model.index(0, 0), Qt::Unchecked, Qt::CheckStateRole));
    QVERIFY(!model.setData(QModelIndex(), Qt::Unchecked, Qt::CheckStateRole));
    QVERIFY(!model.setData(model.index(0, 0), "name", Qt::EditRole));
    QCOMPARE(model.flags(model.index(0, 0)), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    QCOMPARE(model.flags(QModelIndex()), Qt::ItemFlags(Qt::NoItemFlags));
}

void StockSelectorTest::newBox()
{
    StockSelectorBox box;
    QCOMPARE(box.currentIndex(), -1);
    QCOMPARE(box.getStock(), QString());
    QCOMPARE(box.getStockId(), QString("0"));
    QCOMPARE(box.getStockCode(), QString());
    QCOMPARE(column(*box.model(), Qt::DisplayRole), QString("Athens Moscow Exchange Nasdaq Xetra"));
    QCOMPARE(box.completer()->model(), box.model());
    QCOMPARE(box.comboBoxValidator()->model(), box.model());
}

void StockSelectorTest::choosing()
{
    StockSelectorBox box;
    BoxReports reports(&box);
    box.show();
    QTest::keyClick(&box, Qt::Key_Down);
    // The text changes, then the row is activated.
    QCOMPARE(reports.take(), QString("id=5 code=XATH text=Athens id=5 code=XATH"));
    QCOMPARE(box.getStockId(), QString("5"));
    QCOMPARE(box.getStockCode(), QString("XATH"));
    QCOMPARE(box.getStock(), QString("Athens"));
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
    QFETCH(QString, reported);
    QFETCH(QString, id);
    StockSelectorBox box;
    box.setStockId("1");
    BoxReports reports(&box);
    box.lineEdit()->selectAll();
    box.lineEdit()->insert(text);
    QCOMPARE(reports.take(), reported);
    QCOMPARE(box.getStockId(), id);
    QCOMPARE(box.getStock(), text);
    if (text.isEmpty())
        QCOMPARE(box.currentIndex(), -1);
}

void StockSelectorTest::setters_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("reported");
    QTest::newRow("id") << QByteArray("StockId") << "2"
                        << "id=2 code=XETR text=Xetra";
    QTest::newRow("unknown id") << QByteArray("StockId") << "4"
                                << "";
    QTest::newRow("no number: id 0") << QByteArray("StockId") << "x1"
                                     << "id=0 code=NULL text=Zero";
    QTest::newRow("code in another case") << QByteArray("StockCode") << "xetr"
                                          << "id=2 code=XETR text=Xetra";
    QTest::newRow("part of a code") << QByteArray("StockCode") << "XET"
                                    << "";
    QTest::newRow("the same again") << QByteArray("StockId") << "1"
                                    << "";
    QTest::newRow("read-only text") << QByteArray("Stock") << "Xetra"
                                    << "";
}

void StockSelectorTest::setters()
{
    QFETCH(QByteArray, property);
    QFETCH(QString, value);
    QFETCH(QString, reported);
    m_host->table("stocks").addRow({0, "Zero", "NULL"});
    StockSelectorBox box;
    box.setStockId("1");
    BoxReports reports(&box);
    box.setProperty(property, value);
    QCOMPARE(reports.take(), reported);
    QCOMPARE(box.getStock(), reported.isEmpty() ? QString("Nasdaq") : reported.section('=', -1));
}

void StockSelectorTest::chosenAgainOverTypedText()
{
    StockSelectorBox box;
    box.setStockId("2");
    box.lineEdit()->setText("half");
    box.setStockId("2");
    QCOMPARE(box.getStock(), QString("Xetra"));
    StockSelectorBox_Code codes;
    codes.prop_StockId_changed("2");
    codes.lineEdit()->setText("half");
    codes.prop_StockId_changed("2");
    QCOMPARE(codes.currentText(), QString("XETR"));
}

void StockSelectorTest::anotherModel()
{
    StockSelectorBox box;
    const QPointer<StockSelectorModel> first = new StockSelectorModel;
    box.setSourceModel(first);
    QCOMPARE(box.currentIndex(), -1);
    box.setStockId("5");
    auto *const second = new WithoutXetra;
    box.setSourceModel(second);
    QVERIFY(!first);
    QCOMPARE(second->parent(), &box);
    QCOMPARE(column(*box.model(), Qt::DisplayRole), QString("Athens Moscow Exchange Nasdaq"));
    QCOMPARE(box.getStockId(), QString("5"));

    m_host->table("stocks").setRows({{2, "Xetra", "XETR"}, {1, "Nasdaq", "XNAS"}});
    box.setSourceModel(second);
    QCOMPARE(box.count(), 1);
    QCOMPARE(box.currentIndex(), -1);
    QCOMPARE(box.getStock(), QString());
}

void StockSelectorTest::twoBoxesOnOneHub()
{
    StockSelectorBox box, twin;
    Properties hub;
    hub.connectAll(&box);
    hub.connectAll(&twin);
    for (const QByteArray path : {"StockId=2", "StockCode=MISX", "StockId=5"}) {
        hub.setValue(path.split('=')[0], path.split('=')[1]);
        QCOMPARE(twin.getStockId(), box.getStockId());
        QCOMPARE(hub.values()["StockId"].toString(), box.getStockId());
        QCOMPARE(hub.values()["StockCode"].toString(), box.getStockCode());
        QCOMPARE(hub.values()["Stock"].toString(), box.getStock());
    }
    QCOMPARE(box.getStock(), QString("Athens"));
    QTest::keyClick(&twin, Qt::Key_Down);
    QCOMPARE(box.getStock(), QString("Moscow Exchange"));
    twin.lineEdit()->setText("half");
    QCOMPARE(hub.values()["StockId"].toString(), QString("0"));
    QCOMPARE(hub.values()["StockCode"].toString(), QString());
    QCOMPARE(hub.values()["Stock"].toString(), QString("half"));
}

void StockSelectorTest::codeBox()
{
    m_host->table("stocks").setRows({{3, "Xetra", "Z"}, {1, "Nasdaq", "B"}, {2, {}, "a"}});
    StockSelectorBox_Code box;
    QCOMPARE(column(*box.model(), Qt::DisplayRole), QString("B a Z"));
    QCOMPARE(column(*box.model(), Qt::UserRole), QString("1 2 3"));
    QCOMPARE(column(*box.model(), Qt::UserRole + 1), QString("Nasdaq  Xetra"));
    QCOMPARE(box.currentIndex(), -1);
    QCOMPARE(box.currentText(), QString());
    Properties hub;
    QVERIFY(!hub.connectAll(&box));
}

void StockSelectorTest::codeBoxReports()
{
    StockSelectorBox_Code box;
    CodeReports reports(&box);
    box.show();
    QTest::keyClick(&box, Qt::Key_Down);
    QCOMPARE(reports.take(), QString("id=1 code=1 text=XNAS id=1 code=1"));
    box.prop_StockId_changed("02");
    QCOMPARE(reports.take(), QString("id=2 code=2 text=XETR"));
    box.prop_StockId_changed("4");
    QCOMPARE(reports.take(), QString());
    box.lineEdit()->setText("xnas");
    QCOMPARE(reports.take(), QString("id=0 text= text=xnas"));
    box.lineEdit()->clear();
    QCOMPARE(reports.take(), QString("id=0 text= text="));
    QCOMPARE(box.currentIndex(), -1);

    connect(&box, &StockSelectorBox_Code::setProp_StockId,
            [this] { QVERIFY(m_host->table("stocks").isLocked()); });
    box.populate();
    QVERIFY(reports.take().endsWith(" id=0"));
    QCOMPARE(box.currentIndex(), 0);
    m_host->table("stocks").setRows({});
    box.populate();
    QCOMPARE(box.currentIndex(), -1);
}

QTEST_MAIN(StockSelectorTest)
#include "tst_stockselector.moc"
