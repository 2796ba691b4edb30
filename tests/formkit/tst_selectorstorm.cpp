#include "desk.h"

#include <formkit/securityselectormodel.h>

#include <support/stricttest.h>

#include <QRandomGenerator>

#include <chrono>

namespace {

using Rows = QVector<QVariantList>;

constexpr int Securities = 10000;
constexpr int Announcements = 120;
constexpr int IdRole = SecuritySelectorModel::SecurityIdRole;

// In the table's order. An id stays that of one security; so do names, but for every 19th, which
// comes in two versions; a tenth is missing.
Rows securitiesOf(int round)
{
    Rows rows;
    for (int i = 0; i < Securities; ++i) {
        const bool isRenamed = i % 19 == 0 && round % 2;
        const QString name = QString(isRenamed ? "Sec%1x" : "sEc%1").arg(i % (Securities / 3));
        const int stock = 1 + i / (Securities / 4);
        const int board = 1 + i / (Securities / 40);
        if (i % 10 != round % 10)
            rows << QVariantList{i + 1, stock, board, QString("C%1").arg(i + 1), name, {}, i % 3};
    }
    return rows;
}

Rows boardsOf(int round)
{
    Rows rows;
    for (int board = 1; board <= 40; ++board) {
        if (board != 7 + round % 5)
            rows << QVariantList{board, 1 + (board - 1) / 10, QString("B%1").arg(board), "Board"};
    }
    return rows;
}

} // namespace

// An order form under a host that changes all its tables from another thread.
class SelectorStormTest : public StrictTest
{
    Q_OBJECT

private slots:
    void storm();

private:
    void announce(TestHost *host, Desk *desk);
    void checkHub(Desk *desk);

    // How often an announcement met typed text without and with a row, and a choice that went
    // and that stayed.
    int m_outcomes[4] = {0, 0, 0, 0};
};

// New sessions; what stood in the security box before must stand there after.
void SelectorStormTest::announce(TestHost *host, Desk *desk)
{
    ComboBox *const box = desk->box("security");
    const QString text = box->currentText();
    const int caret = box->lineEdit()->cursorPosition();
    const bool isChosen = box->currentIndex() >= 0 && box->itemText(box->currentIndex()) == text;
    const QString id = isChosen ? box->currentData(IdRole).toString() : desk->held("SecurityId");
    emit host->decoder()->aNewSessions();
    const int row = box->findData(id, IdRole, Qt::MatchFixedString);
    ++m_outcomes[(isChosen ? 2 : 0) + (row >= 0 ? 1 : 0)];
    const int chosen = isChosen ? row : box->currentIndex();
    QCOMPARE(box->currentIndex(), chosen);
    QCOMPARE(box->currentText(), isChosen ? box->itemText(row) : text);
    if (!isChosen)
        QCOMPARE(box->lineEdit()->cursorPosition(), caret);
}

// The hub has what the boxes show, or what waits in them; "0" that the program set leaves a choice.
void SelectorStormTest::checkHub(Desk *desk)
{
    desk->act("turn");
    const ComboBox *const box = desk->box("security");
    const int row = box->findData(desk->held("SecurityId"), IdRole, Qt::MatchFixedString);
    QCOMPARE(row >= 0, desk->held("SecurityId") != "0");
    QCOMPARE(desk->held("Security"),
             box->itemData(row, SecuritySelectorModel::SecurityCodeRole).toString());
    if (row >= 0)
        QCOMPARE(box->itemText(row).toLower(), box->currentText().toLower());
    for (const char *const name : {"stock.StockId", "board.BoardId", "board.BoardCode",
                                   "partner.Partner", "partner.PartnerName"}) {
        const QString held = desk->held(QString(name).section('.', 1));
        const QString told = desk->box(QString(name).section('.', 0, 0))->lineEdit()->toolTip();
        if (held != "0" && !told.startsWith(held + " is not in the list yet"))
            QCOMPARE(held, desk->answer(name));
    }
}

void SelectorStormTest::storm()
{
    TestHost host;
    Desk desk(&host, "hub");
    desk.act("at security");
    host.table("stocks").setRows({{1, "One", "S1"}, {2, "Two", "S2"}, {3, "Three", "S3"}});
    host.table("boards").setRows(boardsOf(0));
    host.table("securities").setRows(securitiesOf(0));
    desk.act("announce");
    const TestWriter writer([&host](int round) {
        host.table("boards").setRows(boardsOf(round));
        host.table("gx.diler").setRows({{"Partner", "C", QString(1 + round % 3, 'P')}});
        host.setSessions({{1, round % 3}, {2, 0}, {2, 1}, {3, 2}, {4, round % 2}});
        if (round % 8 == 0)
            host.table("securities").setRows(securitiesOf(round));
        host.table("securities").addRow({Securities + 1 + round, 1, 1, "N", "New"});
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    });
    const QList<DataRow> deeds = rowsOf("stories/storm.txt");
    QRandomGenerator random(41);
    for (int i = 0; i < Announcements && !QTest::currentTestFailed(); ++i) {
        // However fast this thread is, the host changes before each announcement.
        while (writer.rounds() <= i)
            std::this_thread::yield();
        for (int action = 0; action < 4; ++action) {
            const DataRow &deed = deeds.at(random.bounded(deeds.size()));
            const QString number = QString::number(random.bounded(deed[0].toInt() + 1));
            for (QString step : deed.mid(1))
                desk.act(step.replace("%1", number));
        }
        checkHub(&desk);
        announce(&host, &desk);
        checkHub(&desk);
        QCoreApplication::processEvents();
    }
    for (const int outcome : m_outcomes)
        QVERIFY(outcome > 0);
}

QTEST_MAIN(SelectorStormTest)
#include "tst_selectorstorm.moc"
