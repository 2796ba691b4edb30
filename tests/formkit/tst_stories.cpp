// SPDX-License-Identifier: BSD-3-Clause
#include "storyplayer.h"

#include <formkit/pushbuttonsend.h>
#include <formkit/stockselectorbox.h>
#include <hostapi/exception.h>

#include <support/stricttest.h>

#include <QApplication>
#include <QFile>

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
    void quietOpening();
    void sizes();
    void keptIcon();
    void failingHost();
    void manual();
    void failingDirectory();

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
         Selectors + QStringList{"hub", "controls", "combobox", "numbers", "hubs", "pages"}) {
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

// Opening the list clears what was selected there, without a word of it.
void StoriesTest::quietOpening()
{
    StoryPlayer player(m_host.get(), "combobox");
    player.act("items ABC AB");
    player.act("row -1");
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
    const QVector<QVariantList> longNames{{1, QString(300, 'x'), "X"}};
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

// An icon made anew at each write would fill Qt's cache of pictures.
void StoriesTest::keptIcon()
{
    PushButtonSend button;
    button.setValue("");
    const qint64 first = button.icon().cacheKey();
    button.setValue("Limit");
    button.setValue("");
    QVERIFY(!button.icon().isNull());
    QCOMPARE(button.icon().cacheKey(), first);
}

// At every cell that is read: nothing changes, nothing stays locked.
void StoriesTest::failingHost()
{
    for (const QString box :
         {"stock stocks StockId 5", "board boards BoardId 8", "security securities SecurityId 10",
          "partner gx.diler Partner BB", "codes stocks prop_StockId_changed 2"}) {
        const QStringList words = box.split(' ');
        StoryPlayer player(m_host.get(), words[0]);
        TestTable &rows = m_host->table(words[1]);
        const int before = rows.cellReads();
        player.act("populate");
        const int cells = rows.cellReads() - before;
        QVERIFY(cells > 0);
        player.act((words[0] == "codes" ? "call " : "set ") + words[2] + ' ' + words[3]);
        const auto state = [&player] {
            return player.compared("shows", "text= row= id= code= name= caret= ids= source=") +
                   player.log;
        };
        const QString shown = state();
        const bool hasModel = words[0] != "partner" && words[0] != "codes";
        const QString refreshes = words[0] == "security" ? "populate|model new|announce"
                                  : hasModel             ? "populate|model new"
                                                         : "populate";
        for (int cell = 1; cell <= cells; ++cell) {
            for (const QString &refresh : refreshes.split('|')) {
                rows.failAtCell(cell);
                QVERIFY_EXCEPTION_THROWN(player.act(refresh), Exception);
                QCOMPARE(state(), shown);
                QVERIFY(!rows.isLocked());
            }
            rows.failAtCell(cell);
            QVERIFY_EXCEPTION_THROWN(StoryPlayer(m_host.get(), words[0]), Exception);
        }
    }
}

// Its tables are those of the player. `tst_stories --fill` writes them.
void StoriesTest::manual()
{
    const bool isFilled = QCoreApplication::arguments().contains("--fill");
    QFile page(DATA_FOLDER "/README.md");
    QVERIFY(page.open(isFilled ? QIODevice::ReadWrite : QIODevice::ReadOnly));
    const QByteArray text = page.readAll();
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

// At every call: the exchange and what waits stay, and the same again works.
void StoriesTest::failingDirectory()
{
    StoryPlayer player(m_host.get(), "board");
    for (const char *step : {"limit on 1", "set BoardId 99", "turn"})
        player.act(step);
    for (int call = 1; player.answer("StockCode").isEmpty(); ++call) {
        QCOMPARE(player.answer("edit.toolTip"), QString("99 is not in the list yet"));
        m_host->failAtDirectoryCall(call);
        try {
            player.act("set StockCode MX");
            QVERIFY(call > 1);
        } catch (const Exception &) {
        }
    }
    QCOMPARE(player.answer("edit.toolTip"), QString());
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
