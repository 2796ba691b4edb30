#include "selectordesk.h"

#include <formkit/securityselectormodel.h>

#include <support/stricttest.h>

#include <QApplication>
#include <QRandomGenerator>

#include <chrono>

namespace {

using Rows = QVector<QVariantList>;

constexpr int Securities = 10000;
constexpr int Announcements = 200;
constexpr int IdRole = SecuritySelectorModel::SecurityIdRole;

// In the table's order. An id stays that of one security; so do names, but for every 19th, which
// comes in two versions; a tenth is missing.
Rows securitiesOf(int round)
{
    Rows rows;
    for (int i = 0; i < Securities; ++i) {
        const int stock = 1 + i / (Securities / 4);
        const int board = 1 + i / (Securities / 40);
        if (i % 10 == round % 10)
            continue;
        const bool isRenamed = i % 19 == 0 && round % 2;
        const QString name = QString(isRenamed ? "Sec%1x" : "sEc%1").arg(i % (Securities / 3));
        rows << QVariantList{i + 1, stock, board, QString("C%1").arg(i + 1), name, {}, i % 3};
    }
    return rows;
}

Rows boardsOf(int round)
{
    Rows rows;
    for (int board = 1; board <= 40; ++board) {
        if (board != 7 + round % 5)
            rows << QVariantList{board, 1 + (board - 1) / 10, QString("B%1").arg(board),
                                 QString("Board %1").arg(board)};
    }
    return rows;
}

bool sameText(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

class SelectorStormTest : public StrictTest
{
    Q_OBJECT

private slots:
    void storm();
};

// An order form under a host that changes all its tables from another thread.
class StormForm
{
public:
    explicit StormForm(TestHost *host) : m_host(host), m_desk(host, "selectors/hub.txt")
    {
        m_desk.act("at security");
    }

    // One thing that a user or the terminal does.
    void act()
    {
        switch (random(9)) {
        case 0:
            m_desk.box("stock")->setProperty("StockId", QString::number(random(5)));
            break;
        case 1:
            m_desk.box("board")->setProperty("BoardId", QString::number(random(42)));
            break;
        case 2:
            m_desk.act("set SecurityId " + idAt(random(qMax(1, m_box->count()))));
            break;
        case 3:
            m_desk.act("edit");
            Q_FALLTHROUGH();
        case 4:
        case 5:
            m_desk.act(QString("type Sec%1").arg(random(Securities / 3)));
            break;
        case 6:
            m_desk.act("press Backspace Left");
            break;
        case 7:
            m_desk.act("press " + QStringList({"Down", "Return", "Esc"}).at(random(3)));
            break;
        default:
            QTest::keyClicks(m_desk.box("partner"), "P");
        }
        if (random(4) == 0)
            repopulate();
    }

    // New sessions; what stood in the security box before must stand there after.
    void announce()
    {
        const QString text = m_box->currentText();
        const int caret = m_box->lineEdit()->cursorPosition();
        const bool isChosen =
            m_box->currentIndex() >= 0 && m_box->itemText(m_box->currentIndex()) == text;
        const QString id = isChosen ? idAt(m_box->currentIndex()) : held("SecurityId");
        m_desk.takeReports();
        emit m_host->decoder()->aNewSessions();
        const QString reported = m_desk.takeReports();

        const int row = rowOf(id);
        ++m_outcomes[(isChosen ? 2 : 0) + (row >= 0 ? 1 : 0)];
        if (isChosen && row >= 0) {
            QCOMPARE(m_box->currentIndex(), row);
            QCOMPARE(m_box->currentText(), m_box->itemText(row));
        } else if (isChosen) {
            QCOMPARE(m_box->currentText(), QString());
            QCOMPARE(reported, QString("id=0 code= name="));
        } else {
            QCOMPARE(m_box->currentText(), text);
            QCOMPARE(m_box->lineEdit()->cursorPosition(), caret);
        }
        const bool stillNamed = row >= 0 && (isChosen || sameText(m_box->itemText(row), text));
        if (stillNamed || id == "0") {
            QCOMPARE(reported, QString());
            QCOMPARE(held("SecurityId"), id);
        }
        checkHub();
    }

    // The hub has what the boxes show. A partner's name that a population has brought is not
    // reported before the user goes on.
    void checkHub()
    {
        const int row = rowOf(held("SecurityId"));
        QCOMPARE(row >= 0, held("SecurityId") != "0");
        QCOMPARE(held("Security"),
                 m_box->itemData(row, SecuritySelectorModel::SecurityCodeRole).toString());
        if (row >= 0)
            QVERIFY(sameText(m_box->itemText(row), m_box->currentText()));
        for (const char *const name : {"BoardId", "BoardCode"})
            QCOMPARE(held(name), m_desk.box("board")->property(name).toString());
        QCOMPARE(held("Partner"), m_desk.box("partner")->currentText());
        if (!held("PartnerName").isEmpty())
            QCOMPARE(held("PartnerName"),
                     m_desk.box("partner")->property("PartnerName").toString());
    }

    // How often an announcement met typed text without and with a row, and a choice that went
    // and that stayed.
    const int *outcomes() const { return m_outcomes; }

private:
    int random(int end) { return m_random.bounded(end); }
    void repopulate()
    {
        for (const char *const kind : {"stock", "board", "partner"})
            m_desk.act(QString("populate %1").arg(kind));
    }
    QString held(const char *name) { return m_desk.hub().values()[name].toString(); }
    QString idAt(int row) const { return m_box->itemData(row, IdRole).toString(); }
    int rowOf(const QString &id) const { return m_box->findData(id, IdRole, Qt::MatchFixedString); }

    TestHost *m_host;
    SelectorDesk m_desk;
    ComboBox *m_box = m_desk.box("security");
    QRandomGenerator m_random{41};
    int m_outcomes[4] = {0, 0, 0, 0};
};

void SelectorStormTest::storm()
{
    TestHost host;
    StormForm form(&host);
    host.table("stocks").setRows({{1, "One", "S1"}, {2, "Two", "S2"}, {3, "Three", "S3"}});
    host.table("boards").setRows(boardsOf(0));
    host.table("securities").setRows(securitiesOf(0));
    emit host.decoder()->aNewSessions();
    const TestWriter writer([&host](int round) {
        host.table("boards").setRows(boardsOf(round));
        host.table("gx.diler").setRows({{"Partner", "C", QString(1 + round % 3, 'P')}});
        host.setSessions({{1, round % 3}, {2, 0}, {2, 1}, {3, 2}, {4, round % 2}});
        if (round % 8 == 0)
            host.table("securities").setRows(securitiesOf(round));
        host.table("securities").addRow({Securities + 1 + round, 1, 1, "N", "New"});
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    });
    for (int i = 0; i < Announcements && !QTest::currentTestFailed(); ++i) {
        // However fast this thread is, the host changes before each announcement.
        while (writer.rounds() <= i)
            std::this_thread::yield();
        for (int action = 0; action < 3; ++action)
            form.act();
        form.checkHub();
        form.announce();
        QCoreApplication::processEvents();
    }
    for (int i = 0; i < 4; ++i)
        QVERIFY(form.outcomes()[i] > 0);
}

QTEST_MAIN(SelectorStormTest)
#include "tst_selectorstorm.moc"
