#include <formkit/boardselectorbox.h>
#include <formkit/boardselectormodel.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <hostapi/exception.h>

#include <support/reports.h>
#include <support/stricttest.h>
#include <support/testhost.h>

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QMetaEnum>
#include <QVBoxLayout>

#include <memory>

namespace {

using Rows = QVector<QVariantList>;

// The rows that the host may have; the first of them it has.
struct Pool
{
    const char *table;
    int count;
    Rows rows;
};

const Pool boards{"boards",
                  6,
                  {{7, 1, "B", "Shares", "S", 1},
                   {8, 1, "A", "Futures", "F", 2},
                   {9, 1, "a", "Bonds", "S", 3},
                   {7, 2, "B", "Shares", "S", 4},
                   {3, 2, "C", "Auction", "S", 1},
                   {10, 1, "A", "Options", "O", 0}}};
const Pool securities{"securities",
                      6,
                      {{10, 1, 7, "GA", "Gazprom", "ga", 20},
                       {11, 1, 7, "GN", "Gazprom neft", "gn", 20},
                       {12, 1, 7, "GA2", "Gazprom", "ga", 20},
                       {13, 1, 8, "GAF", "Gazprom", "ga", 20},
                       {14, 1, 8, "aF", "aeroflot", {}, 20},
                       {15, 2, 7, "LS", "Lufthansa", "ls", 20},
                       {30, 1, 7, "GZ", "gazp", {}, 20},
                       {9, 1, 7, "L1", "Lufthansa", {}, 20},
                       {10, 1, 7, "GA", "Renamed", {}, 20}}};
const Pool partners{"gx.diler",
                    5,
                    {{"Alpha", "C1", "AA"},
                     {"Beta", "C2", "BB"},
                     {"Second", "C5", "BB"},
                     {"Gamma", {}, "GG"},
                     {"small", " ", "aa"},
                     {"New", "C", "Bx"},
                     {"New", "C", "BB"},
                     {"Third", "C", "bc"}}};

// A form with one box, driven by a line of steps as a user, the terminal and the host would.
class Desk
{
public:
    template <typename Box>
    Desk(TestHost *host, const Pool &pool, Box *box,
         const QMap<QString, typename Reports<Box>::Report> &signalsOfBox)
        : m_host(host), m_pool(pool), m_box(box)
    {
        auto *const layout = new QVBoxLayout(&m_form);
        layout->addWidget(box);
        layout->addWidget(&m_next);
        const auto reports = std::make_shared<Reports<Box>>(box, signalsOfBox);
        takeReports = [reports] { return reports->take(); };
        m_form.show();
        QVERIFY(QTest::qWaitForWindowActive(&m_form));
        box->setFocus();
    }

    std::function<QString()> takeReports;

    void run(const QString &steps)
    {
        for (const QString &step : steps.split(';', Qt::SkipEmptyParts))
            run(step.section(' ', 0, 0), step.section(' ', 1));
    }

    // The text with the caret in it; the values; the current row; the pop-up and its row.
    QString state(const QByteArrayList &values) const
    {
        QStringList parts{m_box->currentText().insert(m_box->lineEdit()->cursorPosition(), '^')};
        for (const QByteArray &value : values)
            parts << m_box->property(value).toString();
        parts << QString::number(m_box->currentIndex());
        const QAbstractItemView *const popup = m_box->completer()->popup();
        for (const QAbstractItemView *const view :
             {popup, const_cast<const QAbstractItemView *>(m_box->view())}) {
            if (view->isVisible())
                parts << QString("%1 of %2")
                             .arg(view->currentIndex().row() + 1)
                             .arg(view->model()->rowCount());
        }
        return parts.join('|');
    }

private:
    void run(const QString &verb, const QString &text)
    {
        if (verb == "type")
            QTest::keyClicks(m_box, text);
        else if (verb == "edit")
            m_box->setEditText(text);
        else if (verb == "press")
            press(text.split(' '));
        else if (verb == "caret")
            m_box->lineEdit()->setCursorPosition(text.toInt());
        else if (verb == "select")
            m_box->lineEdit()->setSelection(text.section(',', 0, 0).toInt(),
                                            text.section(',', 1).toInt());
        else if (verb == "index")
            m_box->setCurrentIndex(text.toInt());
        else if (verb == "host" || verb == "fail")
            refresh(text, verb == "fail");
        else if (verb == "leave")
            m_next.setFocus();
        else if (verb == "dies")
            delete source();
        else if (verb == "model")
            changeModel();
        else if (verb == "codes")
            static_cast<SecuritySelectorModel *>(source())->setDefaultDataRole(
                SecuritySelectorModel::SecurityCodeRole);
        else if (verb == "on")
            qobject_cast<BoardSelectorBox *>(m_box)->setBoardFlagsOnFilter(text.toInt());
        else if (verb == "off")
            qobject_cast<BoardSelectorBox *>(m_box)->setBoardFlagsOffFilter(text.toInt());
        else if (verb == "sectype")
            qobject_cast<BoardSelectorBox *>(m_box)->setSecTypeFilter(text.at(0));
        else
            QVERIFY2(m_box->setProperty(verb.toLatin1(), text), qPrintable(verb));
    }

    // Presses keys where a user's go.
    void press(const QStringList &keys)
    {
        for (const QString &key : keys) {
            QWidget *const popup = QApplication::activePopupWidget();
            QWidget *const view = popup && popup->focusWidget() ? popup->focusWidget() : popup;
            const QByteArray name = "Key_" + key.toLatin1();
            QTest::keyClick(view ? view : m_box,
                            Qt::Key(QMetaEnum::fromType<Qt::Key>().keyToValue(name)));
        }
    }

    // The host has these rows of the pool now, and says so.
    void refresh(const QString &numbers, bool fails)
    {
        Rows rows;
        for (const QString &number : numbers.split(',', Qt::SkipEmptyParts))
            rows << m_pool.rows.at(number.toInt());
        m_host->table(m_pool.table).setRows(rows);
        const auto populate = [this] {
            if (auto *const partner = qobject_cast<PartnerSelectorBox *>(m_box))
                partner->populate();
            else if (auto *const board = qobject_cast<BoardSelectorModel *>(source()))
                board->populate();
            else
                emit m_host->decoder()->aNewSessions();
        };
        if (fails)
            m_host->table(m_pool.table).failAtCell(2);
        if (fails)
            QVERIFY_EXCEPTION_THROWN(populate(), Exception);
        else
            populate();
    }

    void changeModel()
    {
        if (auto *const security = qobject_cast<SecuritySelectorBox *>(m_box))
            security->setSourceModel(new SecuritySelectorModel);
        else
            qobject_cast<BoardSelectorBox *>(m_box)->setSourceModel(new BoardSelectorModel);
    }

    QAbstractItemModel *source() const
    {
        auto *const proxy = qobject_cast<QAbstractProxyModel *>(m_box->model());
        return proxy ? proxy->sourceModel() : nullptr;
    }

    TestHost *m_host;
    const Pool &m_pool;
    QWidget m_form;
    QLineEdit m_next;
    QComboBox *m_box;
};

} // namespace

class SelectorReportsTest : public StrictTest
{
    Q_OBJECT

private slots:
    void board_data();
    void board() { play<BoardSelectorBox>(boards, {"BoardId", "BoardCode"}); }
    void security_data();
    void security()
    {
        play<SecuritySelectorBox>(securities, {"SecurityId", "Security", "SecurityName"});
    }
    void partner_data();
    void partner() { play<PartnerSelectorBox>(partners, {"Partner", "PartnerName"}); }

private:
    template <typename Box> void play(const Pool &pool, const QByteArrayList &values);
    template <typename Box> QMap<QString, typename Reports<Box>::Report> reportsOf();
};

template <>
QMap<QString, Reports<BoardSelectorBox>::Report> SelectorReportsTest::reportsOf<BoardSelectorBox>()
{
    return {{"id", &BoardSelectorBox::boardIdChanged},
            {"code", &BoardSelectorBox::boardCodeChanged},
            {"text", &BoardSelectorBox::boardChanged}};
}

template <>
QMap<QString, Reports<SecuritySelectorBox>::Report>
SelectorReportsTest::reportsOf<SecuritySelectorBox>()
{
    return {{"id", &SecuritySelectorBox::securityIdChanged},
            {"code", &SecuritySelectorBox::securityChanged},
            {"name", &SecuritySelectorBox::securityNameChanged}};
}

template <>
QMap<QString, Reports<PartnerSelectorBox>::Report>
SelectorReportsTest::reportsOf<PartnerSelectorBox>()
{
    return {{"partner", &PartnerSelectorBox::changedPartner},
            {"name", &PartnerSelectorBox::changedPartnerName}};
}

// Given the steps before the '>', the steps behind it report this and leave that.
static void row(const char *name, const QString &steps, const char *reported, const char *state)
{
    QTest::newRow(name) << steps.section('>', 0, 0) << steps.section('>', 1) << reported << state;
}

static void columns()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("when");
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("state");
}

template <typename Box>
void SelectorReportsTest::play(const Pool &pool, const QByteArrayList &values)
{
    QFETCH(QString, given);
    QFETCH(QString, when);
    QFETCH(QString, reported);
    QFETCH(QString, state);
    TestHost host;
    host.table("stocks").setRows({{1, "Moscow", "MX"}, {2, "Xetra", "XE"}});
    host.table("boards").setRows(boards.rows);
    host.table("securities").setRows({});
    host.table(pool.table).setRows(pool.rows.mid(0, pool.count));
    host.setSessions({{1, 20}, {2, 20}});
    Desk desk(&host, pool, new Box, reportsOf<Box>());
    desk.run(given);
    desk.takeReports();
    desk.run(when);
    QCOMPARE(desk.takeReports(), reported);
    QCOMPARE(desk.state(values), state);
    QVERIFY(!host.table(pool.table).isLocked());
}

void SelectorReportsTest::board_data()
{
    columns();
    const char *const emptied = "id=0 code= text=";
    row("new", ">", "", "^|0||-1");
    row("BoardId", ">BoardId 8", "id=8 code=A text=Futures", "Futures^|8|A|2");
    row("BoardId of none", "BoardId 8>BoardId 77", "", "Futures^|8|A|2");
    row("BoardCode", ">BoardCode c", "id=3 code=C text=Auction", "Auction^|3|C|0");
    row("another exchange", "BoardId 8>StockCode XE", emptied, "^|0||-1");
    row("the choice's exchange", "BoardId 8>StockId 1", emptied, "^|0||-1");
    row("exchange, half a name", "type fut>StockCode MX", emptied, "^|0||-1");
    row("exchange, nothing chosen", ">StockCode MX", "", "^|0||-1");
    row("the same exchange", "StockCode MX;BoardCode B>StockId 1", "", "Shares^|7|B|3");
    row("flags of the choice", "BoardId 8>on 2", "", "Futures^|8|A|1");
    row("flags it lacks", "BoardId 8>on 4", emptied, "^|0||-1");
    row("flags it must not have", "BoardId 8>off 2", emptied, "^|0||-1");
    row("flags under half a name", "type fut>on 4", "", "fut^|0||-1");
    row("flags of a typed name", "type Futures>on 4", "id=0 code= text=Futures", "Futures^|0||-1");
    row("security type", "BoardId 8>sectype O", "", "Futures^|8|A|2");
    row("typing a name", "edit Bond>type s", "id=9 code=a text=Bonds", "Bonds^|9|a|-1|0 of 1");
    row("in another case", ">edit bonds", "id=0 code= text=bonds", "bonds^|9|a|-1");
    row("leaving it", "edit bonds>leave", "id=9 code=a text=Bonds", "Bonds^|9|a|1");
    row("clearing", "BoardId 8>edit ", emptied, "^|0||-1");
    row("a key", "BoardId 8>press Down", "id=10 code=A text=Options id=10 code=A",
        "Options^|10|A|3");
    row("population", "index 5>host 4,3", "", "Shares^|7|B|1");
    row("without the choice", "index 5>host 0", emptied, "^|0||-1");
    row("that fails", "BoardId 8>fail 0", "", "Futures^|8|A|2");
    row("another model", "index 5>model", "", "Shares^|7|B|5");
    row("no model", "BoardId 8>dies", emptied, "^|0||-1");
}

void SelectorReportsTest::security_data()
{
    columns();
    const char *const emptied = "id=0 code= name=";
    const char *const first = "id=14 code=aF name=aeroflot name=aeroflot "
                              "id=14 code=aF name=aeroflot";
    row("exchange", "SecurityId 10>StockCode MX", emptied, "^|0|||-1");
    row("exchange, half a name", "edit gaz>StockId 2", emptied, "^|0|||-1");
    row("board", "StockCode MX;SecurityId 10>BoardId 8", emptied, "^|0|||-1");
    row("the same again", "StockCode MX;BoardCode TQ;BoardCode B;SecurityId 10>StockId 1;BoardId 7",
        "", "Gazprom^|10|GA|Gazprom|1");
    row("SecurityId", ">SecurityId 11", "id=11 code=GN name=Gazprom neft name=Gazprom neft",
        "Gazprom neft^|11|GN|Gazprom neft|4");
    row("SecurityId of none", "SecurityId 10>SecurityId 99;SecurityId x", "",
        "Gazprom^|10|GA|Gazprom|3");
    row("SecurityId of a namesake", "SecurityId 10>SecurityId 13",
        "id=13 code=GAF name=Gazprom name=Gazprom", "Gazprom^|13|GAF|Gazprom|1");
    row("Security", "SecurityId 10>Security GA;Security ls",
        "id=15 code=LS name=Lufthansa name=Lufthansa", "Lufthansa^|15|LS|Lufthansa|5");
    row("SecurityName", ">SecurityName LUFTHANSA", "id=15 code=LS name=Lufthansa name=LUFTHANSA",
        "LUFTHANSA^|15|LS|Lufthansa|-1");

    row("typing", ">type ae", "id=0 code= name=a id=0 code= name=ae", "ae^|0|||-1|0 of 1");
    row("to the end", "edit Aeroflo>type T", "id=14 code=aF name=aeroflot name=AerofloT",
        "AerofloT^|14|aF|aeroflot|-1|0 of 1");
    row("a typed namesake", ">edit gazprom", "id=13 code=GAF name=Gazprom name=gazprom",
        "gazprom^|13|GAF|Gazprom|-1");
    row("a chosen one typed over", "SecurityId 10;edit Gazpromx>edit Gazprom",
        "id=10 code=GA name=Gazprom name=Gazprom", "Gazprom^|10|GA|Gazprom|3");
    row("clearing", "SecurityId 14;edit ae>press Backspace Backspace",
        "id=0 code= name=a id=0 code= name=", "^|0|||-1");
    row("leaving", "edit aerofloT>leave", "id=14 code=aF name=aeroflot name=aeroflot",
        "aeroflot^|14|aF|aeroflot|0");
    row("leaving what three have", "edit gazprom>leave", "", "gazprom^|13|GAF|Gazprom|-1");
    row("Enter on half a name", "edit gazp;caret 2>press Return", "", "ga^zp|0|||-1");

    row("new sessions", "SecurityId 10>host 0,1,2,3,4,5", "", "Gazprom^|10|GA|Gazprom|3");
    row("that move the choice", "SecurityId 10>host 0,6", "", "Gazprom^|10|GA|Gazprom|1");
    row("that rename it", "SecurityId 10>host 8", "", "Renamed^|10|GA|Renamed|0");
    row("that drop it", "SecurityId 10>host 2,3", emptied, "^|0|||-1");
    row("that drop all", "SecurityId 10>host ", emptied, "^|0|||-1");
    row("that fail", "SecurityId 10>fail 0", "", "Gazprom^|10|GA|Gazprom|3");
    row("half a name", "edit gazp;caret 2>host 4", "", "ga^zp|0|||-1");
    row("half a name comes", "edit gazp>host 6", "", "gazp^|30||gazp|-1");
    row("leaving it then", "edit gazp;host 6>leave", "id=30 code=GZ name=gazp name=gazp",
        "gazp^|30|GZ|gazp|0");
    row("a typed name stays itself", "edit lufthansa>host 5,7", "", "lufthansa^|15|LS|Lufthansa|1");
    row("a typed name goes", "edit lufthansa>host 0", "id=0 code= name=lufthansa",
        "lufthansa^|0|||-1");
    row("selected text", "SecurityId 10;select 5,-3>host 0;press Delete", "id=0 code= name=Gaom",
        "Ga^om|0|||0");
    row("codes", "SecurityId 10>codes", "id=10 code=GA name=GA name=GA", "GA^|10|GA|Gazprom|1");
    row("codes under half a name", "SecurityId 10;edit gazp;caret 1>codes", "id=0 code= name=gazp",
        "g^azp|0|||1");
    row("codes, nothing chosen", ">codes", "", "^|0|||-1");
    row("another model", "SecurityId 10>model", "", "Gazprom^|10|GA|Gazprom|3");
    row("no model", "SecurityId 10>dies", emptied, "^|0|||-1");
    row("no model, half a name", "edit gazp>dies", "", "gazp^|0|||-1");

    row("Down, closed", ">press Down", first, "aeroflot^|14|aF|aeroflot|0");
    row("Up, closed", "SecurityId 10>press Up", "id=12 code=GA2 name=Gazprom",
        "Gazprom^|12|GA2|Gazprom|2");
    row("Page, Escape, Tab, closed", "SecurityId 10>press PageUp PageDown Escape Tab",
        "id=12 code=GA2 name=Gazprom id=10 code=GA name=Gazprom", "Gazprom^|10|GA|Gazprom|3");
    row("list", "SecurityId 10>press F4 Down", "", "Gazprom^|10|GA|Gazprom|3|5 of 6");
    row("list, nothing chosen", ">press F4 Return", "", "^|0|||-1|0 of 6");
    row("list, ends", "SecurityId 10>press F4 End Down Home Up PageDown", "",
        "Gazprom^|10|GA|Gazprom|3|6 of 6");
    row("list, Enter", "press F4>press End Return",
        "id=15 code=LS name=Lufthansa name=Lufthansa id=15 code=LS name=Lufthansa",
        "Lufthansa^|15|LS|Lufthansa|5");
    row("list, a namesake", "SecurityId 10>press F4 Up Enter", "id=12 code=GA2 name=Gazprom",
        "Gazprom^|12|GA2|Gazprom|2");
    row("list, the choice again", "SecurityId 10;edit x>press F4 Return",
        "id=10 code=GA name=Gazprom name=Gazprom id=10 code=GA name=Gazprom",
        "Gazprom^|10|GA|Gazprom|3");
    row("list, Escape", "edit aerofloT>press F4 End Escape", "", "aerofloT^|14|aF|aeroflot|-1");
    row("list, a letter", "SecurityId 10>press F4 L", "", "Gazprom^|10|GA|Gazprom|3|6 of 6");
    row("list, new sessions", "SecurityId 10;press F4 Down>host 0,1", "",
        "Gazprom^|10|GA|Gazprom|0|2 of 2");

    const char *const neft = "id=11 code=GN name=Gazprom neft name=Gazprom neft";
    row("completion, Down", "type gaz>press Down Down", "id=13 code=GAF name=Gazprom name=Gazprom",
        "Gazprom^|13|GAF|Gazprom|-1|2 of 4");
    row("completion, Enter", "type gaz;press Up>press Return", "id=11 code=GN name=Gazprom neft",
        "Gazprom neft^|11|GN|Gazprom neft|4");
    row("completion, Tab", "type gaz>press Up Tab", neft, "Gazprom neft^|11|GN|Gazprom neft|4");
    row("completion, a namesake", "type gaz;press Down Down Down>press Return",
        "id=10 code=GA name=Gazprom", "Gazprom^|10|GA|Gazprom|3");
    row("completion, Escape", "type gaz>press Escape", "", "gaz^|0|||-1");
    row("completion, Escape gives back", "type gaz;press Up>press Escape", "id=0 code= name=gaz",
        "gaz^|0|||-1");
    row("completion, typing on", "type gaz;press Up>press Backspace", "id=0 code= name=Gazprom nef",
        "Gazprom nef^|0|||-1|0 of 1");
    row("completion, nothing left", "type gaz>press X", "id=0 code= name=gazx", "gazx^|0|||-1");
    row("completion, new sessions", "type gaz>host 0,1", "", "gaz^|0|||-1|0 of 2");
    row("completion, tried", "type gaz;press Up>host 1,2,5;press Escape", "id=0 code= name=gaz",
        "gaz^|0|||1");
    row("completion, all gone", "type gaz>host 4", "", "gaz^|0|||-1");
}

void SelectorReportsTest::partner_data()
{
    columns();
    const char *const emptied = "partner= name=";
    row("new", ">", "", "^|||0");
    row("Partner", ">Partner BB", "partner=BB name=Beta", "BB^|BB|Beta|1");
    row("in another case", ">Partner gg", "partner=GG name=Gamma", "GG^|GG|Gamma|3");
    row("not listed", "Partner BB>Partner ZZ", "partner=ZZ name=", "ZZ^|ZZ||1");
    row("held already", "Partner BB>Partner BB", "", "BB^|BB|Beta|1");
    row("nothing", "Partner BB>Partner ", emptied, "^|||-1");
    row("typing", ">type BB", "partner=B name= partner=BB name=Beta", "BB^|BB|Beta|0|0 of 2");
    row("another case", ">edit bB", "partner=bB name=", "bB^|bB||0");
    row("leaving one of two", "edit bB>leave", "", "bB^|bB||0");
    row("leaving the only one", "edit gG>leave", "partner=GG name=Gamma", "GG^|GG|Gamma|3");
    row("clearing", "Partner BB>edit ", emptied, "^|||-1");
    row("list", "Partner BB>press F4 Down Escape", "", "BB^|BB|Beta|1");
    row("list over half a code", "edit Bx;caret 1>press F4 Down", "", "B^x|Bx||0|2 of 5");
    row("list closed again", "edit Bx;caret 1>press F4 Escape", "", "B^x|Bx||0");
    row("list, Enter", "Partner BB>press F4 End Return",
        "partner=aa name=small partner=aa name=small", "aa^|aa|small|4");
    row("list, the second of a code", "Partner BB>press F4 Down Return", "partner=BB name=Second",
        "BB^|BB|Second|2");
    row("the second by its row", ">index 2", "partner=BB name=Second", "BB^|BB|Second|2");
    row("typing over it", "index 2;edit BBx>edit BB", "partner=BB name=Second", "BB^|BB|Second|2");
    row("completion", "edit ;type g>press Down Return",
        "partner=GG name=Gamma partner=GG name=Gamma", "GG^|GG|Gamma|3");
    row("population picks nobody", ">host 0,1", "", "^|||0");
    row("population after clearing", "Partner BB;edit >host 0,1", "", "^|||0");
    row("population", "Partner BB>host 0,1", "", "BB^|BB|Beta|1");
    row("of the second", "index 2>host 1,2", "", "BB^|BB|Second|1");
    row("that renames", "Partner BB>host 6", "", "BB^|BB|New|0");
    row("that drops the choice", "Partner BB>host 0", emptied, "^|||-1");
    row("that fails", "Partner BB>fail 0", "", "BB^|BB|Beta|1");
    row("half a code", "Partner BB;edit BBx;caret 1>host 1", "", "B^Bx|BBx||-1");
    row("half a code comes", "edit Bx>host 5", "", "Bx^|Bx|New|-1");
    row("leaving it then", "edit Bx;host 5>leave", "partner=Bx name=New", "Bx^|Bx|New|0");
    row("a typed code goes", "edit GG>host 1", "partner=GG name=", "GG^|GG||-1");
    row("list, population", "Partner BB;press F4>host 0,1", "", "BB^|BB|Beta|1|2 of 2");
    row("completion, population", "type b>host 1,2,7", "", "b^|b||-1|0 of 3");
}

QTEST_MAIN(SelectorReportsTest)
#include "tst_selectorreports.moc"
