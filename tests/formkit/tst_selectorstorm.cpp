#include <formkit/boardselectorbox.h>
#include <formkit/boardselectormodel.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/properties.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectormodel.h>

#include <support/reports.h>
#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QVBoxLayout>

#include <chrono>

namespace {

using Rows = QVector<QVariantList>;

constexpr int Securities = 10000;
constexpr int Announcements = 200;

// In the table's order. Ids stay; so do names, but for every 19th, which comes in two
// versions; a tenth is missing.
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
    explicit StormForm(TestHost *host) : m_host(host)
    {
        auto *const layout = new QVBoxLayout(&m_form);
        for (QWidget *const box :
             {static_cast<QWidget *>(m_stock), static_cast<QWidget *>(m_board),
              static_cast<QWidget *>(m_box), static_cast<QWidget *>(m_partner)})
            layout->addWidget(box);
        m_hub.connectAll(&m_form);
        m_form.show();
        m_box->setFocus();
    }

    // One thing that a user or the terminal does.
    void act()
    {
        switch (m_random.bounded(9)) {
        case 0:
            m_stock->setStockId(QString::number(m_random.bounded(5)));
            break;
        case 1:
            m_board->setBoardId(QString::number(m_random.bounded(42)));
            break;
        case 2:
            m_box->setSecurityId(m_box
                                     ->itemData(m_random.bounded(qMax(1, m_box->count())),
                                                SecuritySelectorModel::SecurityIdRole)
                                     .toString());
            break;
        case 3:
            m_box->lineEdit()->clear();
            Q_FALLTHROUGH();
        case 4:
        case 5:
            QTest::keyClicks(m_box, QString("Sec%1").arg(m_random.bounded(Securities / 3)));
            break;
        case 6:
            press(Qt::Key_Backspace);
            press(Qt::Key_Left);
            break;
        case 7:
            press(QVector<Qt::Key>{Qt::Key_Down, Qt::Key_Return, Qt::Key_Escape}.at(
                m_random.bounded(3)));
            break;
        default:
            QTest::keyClicks(m_partner, "P");
        }
        if (m_random.bounded(4) == 0)
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
        m_reports.take();
        emit m_host->decoder()->aNewSessions();
        const QString reported = m_reports.take();

        const int row =
            m_box->findData(id, SecuritySelectorModel::SecurityIdRole, Qt::MatchFixedString);
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
        } else {
            QCOMPARE(held("SecurityId"), m_box->getSecurityId());
        }
        checkHub();
    }

    // The hub has what the boxes show.
    void checkHub()
    {
        const int row = m_box->findData(held("SecurityId"), SecuritySelectorModel::SecurityIdRole,
                                        Qt::MatchFixedString);
        QCOMPARE(row >= 0, held("SecurityId") != "0");
        QCOMPARE(held("Security"),
                 row < 0
                     ? QString()
                     : m_box->itemData(row, SecuritySelectorModel::SecurityCodeRole).toString());
        if (row >= 0)
            QVERIFY(sameText(m_box->itemText(row), m_box->currentText()));
        QCOMPARE(held("BoardId"), m_board->getBoardId());
        QCOMPARE(held("BoardCode"), m_board->getBoardCode());
        QCOMPARE(held("Partner"), m_partner->currentText());
        if (!held("PartnerName").isEmpty())
            QCOMPARE(held("PartnerName"), m_partner->getPartnerName());
    }

    // How often an announcement met typed text without and with a row, and a choice that went
    // and that stayed.
    const int *outcomes() const { return m_outcomes; }

private:
    static bool sameText(const QString &a, const QString &b)
    {
        return a.compare(b, Qt::CaseInsensitive) == 0;
    }
    void press(Qt::Key key)
    {
        QWidget *const popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : static_cast<QWidget *>(m_box), key);
    }
    void repopulate()
    {
        m_stock->findChild<StockSelectorModel *>()->populate();
        m_board->findChild<BoardSelectorModel *>()->populate();
        m_partner->populate();
    }
    QString held(const char *name) const { return m_hub.values()[name].toString(); }
    QString idAt(int row) const
    {
        return m_box->itemData(row, SecuritySelectorModel::SecurityIdRole).toString();
    }

    TestHost *m_host;
    QWidget m_form;
    StockSelectorBox *m_stock = new StockSelectorBox(&m_form);
    BoardSelectorBox *m_board = new BoardSelectorBox(&m_form);
    SecuritySelectorBox *m_box = new SecuritySelectorBox(&m_form);
    PartnerSelectorBox *m_partner = new PartnerSelectorBox(&m_form);
    Properties m_hub;
    Reports<SecuritySelectorBox> m_reports{m_box,
                                           {{"id", &SecuritySelectorBox::securityIdChanged},
                                            {"code", &SecuritySelectorBox::securityChanged},
                                            {"name", &SecuritySelectorBox::securityNameChanged}}};
    QRandomGenerator m_random{41};
    int m_outcomes[4] = {0, 0, 0, 0};
};

void SelectorStormTest::storm()
{
    TestHost host;
    host.table("stocks").setRows({{1, "One", "S1"}, {2, "Two", "S2"}, {3, "Three", "S3"}});
    host.table("boards").setRows(boardsOf(0));
    host.table("securities").setRows(securitiesOf(0));
    host.table("gx.diler").setRows({{"Partner", "C", "P"}});
    host.setSessions({{1, 0}, {1, 1}, {2, 0}, {2, 1}, {3, 2}, {4, 1}});
    StormForm form(&host);
    const TestWriter writer([&host](int round) {
        host.table("boards").setRows(boardsOf(round));
        host.table("gx.diler").setRows({{"Partner", "C", QString(1 + round % 3, 'P')}});
        host.setSessions({{1, round % 3}, {2, 0}, {2, 1}, {3, 2}, {4, round % 2}});
        if (round % 8 == 0)
            host.table("securities").setRows(securitiesOf(round));
        host.table("securities").addRow({Securities + round, 1, 1, "N", "New"});
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    });
    for (int i = 0; i < Announcements && !QTest::currentTestFailed(); ++i) {
        for (int action = 0; action < 3; ++action)
            form.act();
        form.checkHub();
        form.announce();
        QCoreApplication::processEvents();
    }
    QVERIFY(writer.rounds() > 0);
    for (int i = 0; i < 4; ++i)
        QVERIFY(form.outcomes()[i] > 0);
}

QTEST_MAIN(SelectorStormTest)
#include "tst_selectorstorm.moc"
