// SPDX-License-Identifier: BSD-3-Clause
#include <formkit/properties.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectorfilteredmodel.h>
#include <formkit/securityselectormodel.h>

#include <support/stricttest.h>
#include <support/testhost.h>

#include <QLineEdit>
#include <QRandomGenerator>

#include <chrono>

namespace {

using Model = SecuritySelectorModel;

const QVector<int> BoardIds{7, 8};

int boardOf(int id)
{
    return BoardIds.at(id % 2);
}

QVector<QVariantList> rowsOf(const QList<int> &ids)
{
    QVector<QVariantList> rows;
    for (const int id : ids)
        rows << QVariantList{id, 1, boardOf(id), QString("C%1").arg(id), QString("N%1").arg(id),
                             {}, 20};
    return rows;
}

QList<int> firstIds(int count)
{
    QList<int> ids;
    for (int id = 1; id <= count; ++id)
        ids << id;
    return ids;
}

std::unique_ptr<TestHost> makeHost(int count)
{
    auto host = std::make_unique<TestHost>();
    host->table("stocks").setRows({{1, "One", "S"}});
    host->table("boards").setRows({{7, 1, "B7", "Seven"}, {8, 1, "B8", "Eight"}});
    host->table("securities").setRows(rowsOf(firstIds(count)));
    host->setSessions({{1, 20}});
    return host;
}

// Lets a walk last as long as a test needs it to.
class Slow : public Model
{
public:
    Slow() { setPopulatesLater(true); }
    ~Slow() override { setPopulatesLater(false); }
    bool filter(const Record &record) const override
    {
        ++calls;
        if (isSlow)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return Model::filter(record);
    }
    mutable std::atomic<int> calls{0};
    std::atomic<bool> isSlow{true};
};

// QTRY_VERIFY sleeps in between.
void waitFor(const Model &model)
{
    while (model.isPopulating())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

// What a list shows and finds, of some hundred rows of a long one.
QStringList listed(const SelectorProxyModel &list)
{
    QStringList all;
    for (int row = 0; row < list.rowCount(); row += 1 + list.rowCount() / 500) {
        for (int role = Model::StockCodeRole; role <= Model::BaseCodeRole; ++role)
            all << list.index(row, 0).data(role).toString();
        const QVariant id = list.index(row, 0).data(Model::SecurityIdRole);
        if (list.rowsOfKey(Model::SecurityIdRole, id) != QVector<int>{row})
            all << "not found";
    }
    return all;
}

struct List
{
    explicit List(Model *model)
    {
        list.setKeyRoles({Model::SecurityIdRole});
        list.setSourceModel(model);
        QObject::connect(model, &Model::populating, &list, [this](bool is) { notes << is; });
        QObject::connect(model, &Model::modelReset, &list, [this] { ++resets; });
    }
    SecuritySelectorFilteredModel list;
    QVector<bool> notes;
    int resets = 0;
};

// A form under a hub, and what its box has to show.
struct Form
{
    Form() { remake(); }
    void remake()
    {
        hub.reset();
        box.reset();
        host.reset(); // while a worker may be in its table
        host = makeHost(0);
        box = std::make_unique<SecuritySelectorBox>();
        hub = std::make_unique<Properties>();
        hub->connectAll(box.get());
        hub->setValue("StockId", "1");
        content.clear();
        id = 0;
        text.clear();
        setBoard(7);
    }
    Model *model() const { return box->findChild<Model *>(); }
    void setBoard(int other)
    {
        hub->setValue("BoardId", QString::number(other));
        if (std::exchange(board, other) != other)
            choose(0);
    }
    void choose(int row)
    {
        id = row;
        text = row ? QString("N%1").arg(row) : QString();
    }
    int listedCount() const
    {
        return int(std::count_if(content.begin(), content.end(),
                                 [this](int other) { return boardOf(other) == board; }));
    }

    std::unique_ptr<TestHost> host;
    std::unique_ptr<SecuritySelectorBox> box;
    std::unique_ptr<Properties> hub;
    QList<int> content;
    int board = 0;
    int id = 0;
    QString text;
};

} // namespace

class PopulateLaterTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void announcement();
    void failures();
    void walkGivesWay();
    void startsOver();
    void storm();

private:
    static void act(Form *form, QRandomGenerator *random);
};

// A large table is read off this thread, as populate() would have read it.
void PopulateLaterTest::announcement()
{
    const auto host = makeHost(50000);
    Model model;
    Model atOnce;
    List later(&model);
    List now(&atOnce);
    Q_EMIT host->decoder()->aNewSessions();
    QVERIFY(!model.isPopulating() && later.notes.isEmpty());
    QCOMPARE(later.resets, 1);
    host->table("securities").addRow({60000, 1, 7, "C", "Zz", {}, 20});
    disconnect(host->decoder(), nullptr, &atOnce, nullptr);
    Q_EMIT host->decoder()->aNewSessions();
    QVERIFY(model.isPopulating());
    QCOMPARE(model.rowCount(), 50000);
    waitFor(model);
    QCOMPARE(later.resets, 2);
    QCOMPARE(later.notes, QVector<bool>({true, false}));
    atOnce.populate();
    QCOMPARE(later.list.rowCount(), 50001);
    QCOMPARE(listed(later.list), listed(now.list));
    // A subclass may not be ready for another thread.
    class Own : public Model
    {
    } own;
    own.populateLater();
    QCOMPARE(own.rowCount(), 50001);
}

// Whatever cannot be read: the old rows stay, and what was thrown is told.
void PopulateLaterTest::failures()
{
    const auto host = makeHost(20);
    Model model;
    List later(&model);
    model.populate();
    const QStringList before = listed(later.list);
    host->table("securities").setRows(rowsOf({1, 2, 3}));
    const auto fails = [&](const QString &why) {
        expectWarning("SecuritySelectorModel::populateLater: .*: " + why);
        model.populateLater();
        waitFor(model);
        QCOMPARE(listed(later.list), before);
    };
    host->table("securities").failAtCell(11);
    fails("cell read failed");
    for (const int call : {1, 2, 3}) {
        host->failAtDirectoryCall(call);
        fails("directory call failed");
    }
    QCOMPARE(later.resets, 1);
    model.populateLater();
    waitFor(model);
    QCOMPARE(later.list.rowCount(), 3);
    host->table("securities").setRows({});
    model.populateLater();
    ICore::install(nullptr);
    waitFor(model);
    QCOMPARE(later.list.rowCount(), 3);
}

// Whoever waits for a table on this thread has it before the walk has come to its end.
void PopulateLaterTest::walkGivesWay()
{
    const auto host = makeHost(2000);
    Slow model;
    List later(&model);
    const auto begin = [&model] {
        model.calls = 0;
        model.isSlow = true;
        model.populateLater();
        QTRY_VERIFY(model.calls > 3);
    };
    begin();
    {
        const TableLock lock(&host->table("boards"));
    }
    {
        const TableLock lock(&host->table("securities"));
        QVERIFY(model.calls < 2000);
    }
    model.isSlow = false;
    waitFor(model);
    QCOMPARE(model.rowCount(), 2000);
    QCOMPARE(later.resets, 1);
    // It can be given up: by a promise that is taken back, and for rows that are read at once.
    begin();
    model.setPopulatesLater(false);
    const int calls = model.calls;
    QTest::qWait(20);
    QCOMPARE(calls, int(model.calls));
    model.setPopulatesLater(true);
    begin();
    model.isSlow = false;
    model.populate();
    QVERIFY(!model.isPopulating());
    QTest::qWait(20);
    QCOMPARE(later.resets, 2);
    QCOMPARE(later.notes, QVector<bool>({true, false, true, false, true, false}));
    begin(); // and the model destroyed
}

// Whatever comes meanwhile, one reset brings rows and lists that agree.
void PopulateLaterTest::startsOver()
{
    const auto host = makeHost(100);
    Model model;
    List later(&model);
    model.populateLater();
    host->table("securities").setRows(rowsOf(firstIds(60)));
    model.populateLater();
    model.setDefaultDataRole(Model::SecurityIdRole);
    later.list.setStockBoard("S", "B8");
    later.list.setKeyRoles({Model::SecurityIdRole, Model::SecurityCodeRole});
    waitFor(model);
    QCOMPARE(later.resets, 1);
    QCOMPARE(later.notes, QVector<bool>({true, false}));
    QCOMPARE(later.list.rowCount(), 30);
    QCOMPARE(later.list.rowOfText("7", Qt::CaseSensitive), 28);
    const auto code = later.list.rowsOfKey(Model::SecurityCodeRole, "c59");
    QCOMPARE(code.size(), 1);
    QCOMPARE(later.list.index(code.first(), 0).data().toString(), QString("59"));
    // A receiver of the new rows starts over, another destroys the model.
    Slow again;
    again.isSlow = false;
    auto *const doomed = new Model;
    int rounds = 0;
    connect(&again, &Model::modelReset, [&] { ++rounds < 3 ? again.populateLater() : void(); });
    connect(doomed, &Model::modelReset, [doomed] { delete doomed; });
    again.populateLater();
    doomed->populateLater();
    QTRY_VERIFY(rounds == 3 && !again.isPopulating());
}

// One thing that the user, the program or the host does, whatever the worker does meanwhile.
void PopulateLaterTest::act(Form *form, QRandomGenerator *random)
{
    Form &f = *form;
    const auto oneOf = [random](int end) { return int(random->bounded(end)); };
    switch (oneOf(12)) {
    case 0:
        if (f.box->count() > 0) {
            f.box->setCurrentIndex(-1); // the row may be current under another text
            f.box->setCurrentIndex(oneOf(f.box->count()));
            f.choose(f.box->currentData(Model::SecurityIdRole).toInt());
        }
        break;
    case 1:
        // An id whose row went in the turn in which it was set would go on waiting for it.
        waitFor(*f.model());
        if (f.box->count() > 0) {
            f.choose(f.box->itemData(oneOf(f.box->count()), Model::SecurityIdRole).toInt());
            f.hub->setValue("SecurityId", QString::number(f.id));
            QCoreApplication::processEvents();
        }
        break;
    case 2:
        f.box->lineEdit()->clear();
        QTest::keyClicks(f.box->lineEdit(), "xy");
        f.choose(0);
        f.text = "xy";
        break;
    case 3:
        f.setBoard(BoardIds.at(oneOf(2)));
        break;
    case 4:
        f.box->setSourceModel(new Model);
        break;
    case 5:
        f.model()->populate();
        break;
    case 6:
        if (oneOf(10) == 0)
            f.remake();
        break;
    case 7:
    case 8:
        f.content.clear();
        for (int id = 1; id <= 40; ++id) {
            if (oneOf(3) > 0)
                f.content << id;
        }
        std::thread([&f] { f.host->table("securities").setRows(rowsOf(f.content)); }).join();
        break;
    case 9:
        QCoreApplication::processEvents();
        break;
    default:
        f.model()->populateLater();
    }
}

// FORMKIT_STORM_ROUNDS asks for more rounds.
void PopulateLaterTest::storm()
{
    const int rounds = qMax(100, qEnvironmentVariableIntValue("FORMKIT_STORM_ROUNDS"));
    QRandomGenerator random(42);
    Form form;
    for (int round = 0; round < rounds; ++round) {
        for (int acts = int(random.bounded(5)); acts >= 0; --acts) {
            act(&form, &random);
            // What a population may have taken from the list is not the choice any more.
            if (form.id != 0 && !form.content.contains(form.id)) {
                form.model()->populateLater();
                waitFor(*form.model());
                form.choose(0);
            }
        }
        form.model()->populateLater();
        waitFor(*form.model());
        QCoreApplication::processEvents();
        const QString id = QString::number(form.id);
        QCOMPARE(form.box->currentText(), form.text);
        QCOMPARE(form.box->count(), form.listedCount());
        QCOMPARE(form.box->getSecurityId(), id);
        QCOMPARE(QString::number(form.hub->values()["SecurityId"].toInt()), id);
    }
}

QTEST_MAIN(PopulateLaterTest)
#include "tst_populatelater.moc"
