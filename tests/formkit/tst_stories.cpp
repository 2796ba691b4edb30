// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

#include <formkit/lineedit.h>
#include <formkit/pushbuttonsend.h>
#include <formkit/stockselectorbox.h>
#include <hostapi/exception.h>

#include <support/stricttest.h>

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLayout>
#include <QTabWidget>

Q_DECLARE_METATYPE(DataRow)

namespace {

const QStringList Selectors = {"stock", "codes", "board", "security", "partner"};

} // namespace

class StoriesTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void stories_data();
    void stories();
    void later_data();
    void later();
    void quietOpening();
    void reasonLine();
    void errorPages();
    void sizes();
    void failingHost();
    void manual();

private:
    std::unique_ptr<TestHost> m_host;
};

void StoriesTest::init()
{
    StrictTest::init();
    m_host = std::make_unique<TestHost>();
}

// The host complains of rows that are still held and of locks.
void StoriesTest::cleanup()
{
    m_host.reset();
    StrictTest::cleanup();
}

void StoriesTest::stories_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<DataRow>("story");
    for (const QString &file :
         Selectors + QStringList{"hub", "controls", "combobox", "numbers", "entry", "hubs", "pages",
                                 "rules", "example"}) {
        QList<DataRow> stories = StoryFile(file).stories;
        if (Selectors.contains(file))
            stories << StoryFile("boxes").stories;
        for (const DataRow &story : std::as_const(stories))
            QTest::addRow("%s: %s", qPrintable(file), qPrintable(story.first())) << file << story;
    }
}

void StoriesTest::stories()
{
    QFETCH(QString, file);
    QFETCH(DataRow, story);
    StoryPlayer player(m_host.get(), file);
    player.play(story);
}

// The same refreshes by a worker: what is kept, chosen and reported is as it was.
void StoriesTest::later_data()
{
    QTest::addColumn<DataRow>("story");
    const auto refreshes = QRegularExpression("\\b(populate|announce)\\b");
    for (const DataRow &story : StoryFile("security").stories + StoryFile("boxes").stories) {
        if (story.mid(1).filter(refreshes).size() > 0)
            QTest::addRow("%s", qPrintable(story.first())) << story;
    }
}

void StoriesTest::later()
{
    QFETCH(DataRow, story);
    StoryPlayer player(m_host.get(), "security");
    player.populatesLater = true;
    player.play(story);
}

// The reason stands below a field where the form has room, and goes and comes with the form.
void StoriesTest::reasonLine()
{
    StoryPlayer player(m_host.get(), "rules");
    const auto line = [&] {
        for (const QLabel *label : player.window.findChildren<QLabel *>()) {
            if (label->text() == "At most 500" && label->isVisible())
                return label->geometry().top() == player.control("price")->geometry().bottom() + 1;
        }
        return false;
    };
    player.act("rules; at price; type 600; leave; turn");
    QVERIFY(!line());
    player.window.layout()->setSpacing(2 * player.window.fontMetrics().height());
    player.window.resize(player.window.sizeHint());
    player.act("turn");
    QVERIFY(line());
    player.window.hide();
    QVERIFY(!line());
    player.window.show();
    QVERIFY(line());
    player.act("at price; press End BackSpace; turn");
    QVERIFY(!line());
}

// A wrong field on a hidden tab is gone to; one that is disabled is not judged. A rule that throws
// makes its name wrong.
void StoriesTest::errorPages()
{
    QTabWidget form;
    for (const char *const name : {"first", "second"}) {
        auto *const page = new QWidget;
        auto *const edit = new LineEdit(page);
        edit->setObjectName(name);
        edit->setProperty("field", name);
        form.addTab(page, name);
    }
    Properties hub;
    hub.connectAll(&form);
    FormRules rules(&hub, &form);
    rules.require("second");
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    QVERIFY(!rules.check());
    QCOMPARE(form.currentIndex(), 1);
    QCOMPARE(QApplication::focusWidget()->objectName(), "second");
    form.currentWidget()->setEnabled(false);
    QVERIFY(rules.check());
    rules.add({"first"}, [](const Values &) -> QString { throw Exception("no quotes"); });
    QVERIFY(!rules.isValid() && rules.errors().contains("first"));
}

// Opening the list clears what was selected there, without a word of it.
void StoriesTest::quietOpening()
{
    StoryPlayer player(m_host.get(), "combobox");
    player.act("items ABC AB; row -1");
    QAbstractItemView *const view = player.box()->view();
    QItemSelectionModel *const selection = view->selectionModel();
    selection->select(view->model()->index(1, 0), QItemSelectionModel::Select);
    QVector<bool> quiet;
    connect(selection, &QItemSelectionModel::selectionChanged, this,
            [&] { quiet << view->signalsBlocked(); });
    player.act("press F4");
    QCOMPARE(quiet, QVector<bool>{true});
    QVERIFY(!selection->hasSelection() && !view->signalsBlocked());
}

// A long name does not make a form as wide, nor does a refresh change one that is shown.
void StoriesTest::sizes()
{
    const QVector<QVariantList> longNames{{1, QString(300, 'W'), "X"}};
    m_host->table("stocks").setRows(longNames);
    const StockSelectorBox wide;
    const int character = wide.fontMetrics().horizontalAdvance('x');
    QVERIFY(wide.sizeHint().width() > 30 * character && wide.sizeHint().width() < 40 * character);

    StoryPlayer player(m_host.get(), "stock");
    ComboBox *const box = player.box();
    const QSize shown = box->sizeHint();
    m_host->table("stocks").setRows(longNames);
    player.act("populate");
    QCOMPARE(box->sizeHint(), shown);
    box->setMinimumContentsLength(20);
    QVERIFY(box->sizeHint().width() > shown.width());
    QCOMPARE(box->minimumSizeHint(), box->sizeHint());
    box->setMinimumContentsLength(3);
    QVERIFY(box->minimumSizeHint().width() < box->sizeHint().width());
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    QCOMPARE(box->minimumSizeHint(), box->sizeHint());
}

// At every cell that is read and every call of a directory: nothing changes, nothing stays locked.
void StoriesTest::failingHost()
{
    for (const QString box :
         {"stock|stocks|set StockId 5|populate|model new",
          "board|boards|limit on 3; set BoardId 8|populate|model new|set StockCode XE|limit on 2",
          "board|boards|limit on 1; set BoardId 99|set StockCode MX",
          "security|securities|set SecurityId 10|populate|model new|announce",
          "partner|gx.diler|set Partner BB|populate",
          "codes|stocks|call prop_StockId_changed 2|populate"}) {
        const QStringList words = box.split('|');
        TestTable &rows = m_host->table(words[1]);
        const auto hasFailed = [&](StoryPlayer *player, const QString &refresh, int cell,
                                   int call) {
            rows.failAtCell(cell);
            m_host->failAtDirectoryCall(call);
            bool isThrown = false;
            try {
                player->act(refresh);
            } catch (const Exception &) {
                isThrown = true;
            }
            rows.failAtCell(0);
            m_host->failAtDirectoryCall(0);
            return isThrown;
        };
        for (int i = 0; i < 2 * (words.size() - 3); ++i) {
            StoryPlayer player(m_host.get(), words[0]);
            player.act(words[2] + "; turn");
            const auto state = [&player] {
                return player.compared("shows",
                                       "text= row= id= code= name= caret= ids= source= tip=") +
                       player.log;
            };
            const QString shown = state();
            for (int n = 1; hasFailed(&player, words[3 + i / 2], i % 2 ? n : 0, i % 2 ? 0 : n);
                 ++n) {
                QCOMPARE(state(), shown);
                QVERIFY(!rows.isLocked());
            }
        }
        rows.failAtCell(1);
        QVERIFY_EXCEPTION_THROWN(StoryPlayer(m_host.get(), words[0]), Exception);
    }
}

// Its example is the file that is played, and its tables are those of the player. `tst_stories
// --fill` writes the tables.
void StoriesTest::manual()
{
    const bool isFilled = QCoreApplication::arguments().contains("--fill");
    QFile page(DATA_FOLDER "/README.md");
    QVERIFY(page.open(isFilled ? QIODevice::ReadWrite : QIODevice::ReadOnly));
    const QByteArray text = page.readAll();
    QFile example(DATA_FOLDER "/stories/example.txt");
    QVERIFY(example.open(QIODevice::ReadOnly));
    QVERIFY2(text.contains("```\n" + example.readAll() + "```"), "not the example that is played");
    const int start = text.indexOf("\n### ");
    QVERIFY(start > 0);
    const QByteArray tables = StoryPlayer(m_host.get(), "stock").manual().toUtf8();
    if (isFilled) {
        page.resize(start);
        page.seek(start);
        page.write(tables);
    } else {
        QVERIFY2(text.mid(start) == tables, "run tst_stories --fill");
    }
}

int main(int argc, char **argv)
{
    QLocale::setDefault(QLocale("en_US"));
    QApplication application(argc, argv);
    StoriesTest test;
    if (application.arguments().contains("--fill"))
        return QTest::qExec(&test, {argv[0], "manual"});
    return QTest::qExec(&test, argc, argv);
}

#include "tst_stories.moc"
