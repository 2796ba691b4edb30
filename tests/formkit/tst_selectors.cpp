#include "selectordesk.h"

#include <formkit/boardselectorbox.h>
#include <formkit/boardselectormodel.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/securityselectorbox.h>
#include <formkit/securityselectormodel.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>
#include <formkit/stockselectormodel.h>
#include <hostapi/exception.h>

#include <support/stricttest.h>

#include <QApplication>
#include <QScrollBar>
#include <QWheelEvent>

namespace {

template <typename Model> class CheckList : public Model
{
public:
    CheckList() { this->m_checkable = true; }
    bool filter(const Record &record) const override
    {
        return record.field(record.table()->columnIndex("name")).toString() != "hidden";
    }
};

QString keyText(qint32 id)
{
    return QString::number(id);
}

QString keyText(const Board &board)
{
    return QString("%1,%2").arg(board.stock_id).arg(board.board_id);
}

// Emissions of stocksChanged() and boardsChanged(): "some: 1 2", "all: 1 2".
template <typename Set> auto noteInto(QStringList *notes)
{
    return [notes](bool enable, const Set &set) {
        QStringList texts{enable ? "some:" : "all:"};
        for (const auto &key : set)
            texts << keyText(key);
        *notes << texts.join(' ');
    };
}

} // namespace

Q_DECLARE_METATYPE(DataRow)

class SelectorsTest : public StrictTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void stories_data();
    void stories();
    void values();
    void stockCheckList();
    void boardCheckList();
    void boardRecords();
    void decoders();
    void failingHost_data();
    void failingHost();
    void noHost();
    void partnerLines();
    void farRows();
    void mouse();
    void destroyedWithItsPopupsOpen();

private:
    std::unique_ptr<TestHost> m_host;
};

void SelectorsTest::init()
{
    StrictTest::init();
    m_host = std::make_unique<TestHost>();
}

void SelectorsTest::cleanup()
{
    for (const char *const name : {"stocks", "boards", "securities", "gx.diler"}) {
        QCOMPARE(m_host->table(name).references(), 0);
        QVERIFY(!m_host->table(name).isLocked());
    }
    m_host.reset();
    StrictTest::cleanup();
}

void SelectorsTest::stories_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<DataRow>("story");
    for (const char *const name : {"stock", "codes", "board", "security", "partner", "hub"}) {
        const QString file = QString("selectors/%1.txt").arg(name);
        for (const DataRow &story : SelectorDesk::storiesOf(file))
            QTest::addRow("%s: %s", name, qPrintable(story.first())) << file << story;
    }
}

void SelectorsTest::stories()
{
    QFETCH(QString, file);
    QFETCH(DataRow, story);
    SelectorDesk desk(m_host.get(), file);
    desk.play(story);
}

// The roles of a row, from the first on.
void SelectorsTest::values()
{
    struct Expected
    {
        QString kind;
        const char *userProperty;
        int row;
        QVariantList values;
    };
    const Expected all[] = {
        {"stock", "StockId", 2, {1, "XNAS"}},
        {"board", "BoardId", 1, {"1,9", 1, 9, "MX", "a"}},
        {"security", "SecurityId", 1, {"MX", 8, "SP", qlonglong(13), "Gazprom", "GAF", "ga"}}};
    for (const Expected &expected : all) {
        const SelectorDesk desk(m_host.get(), QString("selectors/%1.txt").arg(expected.kind));
        const QModelIndex index = desk.box()->model()->index(expected.row, 0);
        int role = Qt::UserRole + 1;
        for (const QVariant &value : expected.values) {
            QCOMPARE(index.data(role), value);
            QCOMPARE(index.data(role++).type(), value.type());
        }
        for (const int none : {int(Qt::ToolTipRole), int(Qt::CheckStateRole), role})
            QVERIFY(!index.data(none).isValid());
        QCOMPARE(index.flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        for (const QModelIndex &refusing : {desk.source()->index(0, 0), QModelIndex()})
            QVERIFY(!desk.source()->setData(refusing, 0, Qt::CheckStateRole));
        QCOMPARE(desk.box()->metaObject()->userProperty().name(), expected.userProperty);
    }
}

void SelectorsTest::stockCheckList()
{
    m_host->table("stocks").setRows(
        {{1, "One", "A"}, {2, "Two", "C"}, {3, "Three", "B"}, {4, "hidden", "D"}});
    CheckList<StockSelectorModel> model;
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    QStringList notes;
    connect(&model, &StockSelectorModel::stocksChanged, noteInto<Stocks>(&notes));
    model.sendStocksChanged();
    model.populate();
    QVERIFY(model.flags(model.index(0, 0)) & Qt::ItemIsUserCheckable);
    QCOMPARE(model.index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
    QVERIFY(!model.setData(model.index(1, 0), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(model.setData(model.index(1, 0), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes[0][0].toModelIndex(), model.index(1, 0));
    for (const QVariant &all : {QVariant(), QVariant(0), QVariant(1)}) {
        if (all.isValid())
            QVERIFY(model.setData(QModelIndex(), all, Qt::CheckStateRole));
        model.sendStocksChanged();
    }
    QCOMPARE(notes, QStringList({"all:", "some: 1 2", "some:", "all: 1 2 3"}));
}

void SelectorsTest::boardCheckList()
{
    m_host->table("boards").setRows({{7, 1, "B"}, {8, 1, "A"}, {7, 2, "B"}, {9, 2, "B", "hidden"}});
    CheckList<BoardSelectorModel> model;
    QStringList notes;
    connect(&model, &BoardSelectorModel::boardsChanged, noteInto<Boards>(&notes));
    model.populate();
    QVERIFY(notes.isEmpty());
    QTRY_COMPARE(notes, QStringList("all: 1,7 1,8 2,7"));
    QVERIFY(model.setData(model.index(0, 0), Qt::Unchecked, Qt::CheckStateRole));
    QVERIFY(model.setData(model.index(2, 0), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(notes.size(), 1);
    QTRY_COMPARE(notes.size(), 2);
    QCOMPARE(notes.last(), QString("some: 1,7"));
    // Setting all is not reported by itself, nor is a population that fails.
    QVERIFY(model.setData(QModelIndex(), 0, Qt::CheckStateRole));
    m_host->table("boards").failAtCell(1);
    QVERIFY_EXCEPTION_THROWN(model.populate(), Exception);
    QTest::qWait(1);
    QCOMPARE(notes.size(), 2);
}

void SelectorsTest::boardRecords()
{
    const SelectorDesk desk(m_host.get(), "selectors/board.txt");
    const auto &model = *qobject_cast<BoardSelectorModel *>(desk.source());
    TestTable &table = m_host->table("boards");
    for (int row = 0; row < model.rowCount(); ++row)
        QCOMPARE(model.at(row).field(table.columnIndex("name")).toString(),
                 model.index(row, 0).data().toString());
    QVERIFY(model.at(-1).isNull());
    QVERIFY(model.at(6).isNull());
    table.setRows({});
    QVERIFY(model.at(0).isNull());
}

// A model listens to the first decoder among the plug-ins.
void SelectorsTest::decoders()
{
    m_host->table("securities").setRows({{1, 1, 1, "C", "Name", {}, 20}});
    m_host->setSessions({{1, 20}});
    TestDecoder first;
    QObject other;
    m_host->setPlugins({nullptr, &other, &first, m_host->decoder()});
    const SecuritySelectorModel listening;
    emit m_host->decoder()->aNewSessions();
    QCOMPARE(listening.rowCount(), 0);
    emit first.aNewSessions();
    QCOMPARE(listening.rowCount(), 1);
    m_host->setPlugins({});
    SecuritySelectorModel alone;
    alone.populate();
    QCOMPARE(alone.rowCount(), 1);
}

void SelectorsTest::failingHost_data()
{
    QTest::addColumn<QStringList>("words");
    for (const QString words :
         {"stock stocks StockId 5", "board boards BoardId 8", "security securities SecurityId 10",
          "partner gx.diler Partner BB", "codes stocks prop_StockId_changed 2"})
        QTest::newRow(qPrintable(words.section(' ', 0, 0))) << words.split(' ');
}

// At every cell that is read: nothing changes, nothing stays locked.
void SelectorsTest::failingHost()
{
    QFETCH(QStringList, words);
    const QString file = QString("selectors/%1.txt").arg(words[0]);
    SelectorDesk desk(m_host.get(), file);
    TestTable &rows = m_host->table(words[1]);
    const int before = rows.cellReads();
    desk.act("populate");
    const int cells = rows.cellReads() - before;
    QVERIFY(cells > 0);
    desk.act("set " + words[2] + ' ' + words[3]);
    desk.takeReports();
    const QString shown = desk.answer("shows") + desk.answer("ids") + desk.answer("source");
    const QString refreshes[] = {
        "populate", words[0] == "partner" || words[0] == "codes" ? "populate" : "model new"};
    for (int cell = 1; cell <= cells; ++cell) {
        for (const QString &refresh : refreshes) {
            rows.failAtCell(cell);
            QVERIFY_EXCEPTION_THROWN(desk.act(refresh), Exception);
            QCOMPARE(desk.answer("shows") + desk.answer("ids") + desk.answer("source"), shown);
            QCOMPARE(desk.takeReports(), QString());
            QVERIFY(!rows.isLocked());
        }
        rows.failAtCell(cell);
        QVERIFY_EXCEPTION_THROWN(SelectorDesk(m_host.get(), file), Exception);
    }
}

void SelectorsTest::noHost()
{
    ICore::install(nullptr);
    for (const char *const kind : {"stock", "codes", "board", "security", "partner"}) {
        SelectorDesk desk(m_host.get(), QString("selectors/%1.txt").arg(kind));
        desk.act("populate");
        for (const char *const name : {"StockId", "BoardId", "SecurityId", "Partner"})
            desk.box()->setProperty(name, "1");
        for (const char *const step : {"type x", "press F4", "press End", "press Escape", "leave"})
            desk.act(step);
        QCOMPARE(desk.answer("ids"), QString());
        QCOMPARE(desk.answer("tip"), QString("Not in the list"));
    }
    ICore::install(m_host.get());
    m_host->removeTable("stocks");
    expectWarning("ICore::table: the host has no table \"stocks\"");
    StockSelectorModel model;
    model.populate();
    QCOMPARE(model.rowCount(), 0);
}

void SelectorsTest::partnerLines()
{
    for (const int length : {1, 21, 22, 25}) {
        const QString code(length, 'X');
        m_host->table("gx.diler").setRows({{"%1 name %2", "C", code}, {"No client", " ", "Z"}});
        QWidget form;
        form.setProperty("RiskAddress", true);
        PartnerSelectorBox box(&form);
        QCOMPARE(box.count(), 1);
        QCOMPARE(box.itemText(0), code);
        box.showPopup();
        QCOMPARE(box.itemText(0), code + QString(qMax(0, 22 - length), ' ') + "%1 name %2");
        QVERIFY(box.view()->width() >= 40 * box.view()->fontMetrics().height() / 2);
        form.setProperty("RiskAddress", QVariantList{true});
        box.populate();
        QCOMPARE(box.count(), 2);
    }
}

void SelectorsTest::farRows()
{
    constexpr int Count = 100000;
    SelectorDesk desk(m_host.get(), "selectors/security.txt");
    QVector<QVariantList> many;
    for (int i = 0; i < Count; ++i)
        many << QVariantList{i + 1, 1, 7, QString("C%1").arg(i), QString("N%1").arg(i, 6), {}, 20};
    m_host->table("securities").setRows(many);
    desk.act("announce");
    const QAbstractItemView &list = *desk.box()->view();
    const auto shows = [](const QAbstractItemView &view, int row) {
        const QRect place = view.visualRect(view.model()->index(row, 0));
        return view.viewport()->rect().contains(place) &&
               view.indexAt(place.center()).row() == row &&
               view.selectionModel()->isRowSelected(row, {});
    };
    desk.act("set SecurityId 90000");
    desk.act("press F4");
    QVERIFY(shows(list, 89999));
    const int visible = list.viewport()->height() / list.sizeHintForRow(0);
    QCOMPARE(visible, desk.box()->maxVisibleItems());
    for (const auto &step : QVector<QPair<QString, int>>{{"End", Count - 1},
                                                         {"PgUp", Count - visible},
                                                         {"PgUp", Count - 2 * visible + 1},
                                                         {"Home", 0},
                                                         {"PgDown", visible - 1},
                                                         {"Up", visible - 2},
                                                         {"End", Count - 1}}) {
        desk.act("press " + step.first);
        QCOMPARE(list.currentIndex().row(), step.second);
        QVERIFY(shows(list, step.second));
    }
    desk.act("press Return");
    QCOMPARE(desk.box()->property("SecurityId").toString(), QString::number(Count));
    // The same rows as completions.
    for (const char *const step : {"edit", "type n", "press Up"})
        desk.act(step);
    QCOMPARE(desk.answer("lit"), QString("-|%1 of %2|box").arg(Count - 1).arg(Count));
    QVERIFY(shows(*desk.completions(), Count - 1));
    desk.act("press Escape");
    QCOMPARE(desk.box()->currentText(), QString("n"));
}

void SelectorsTest::mouse()
{
    SelectorDesk desk(m_host.get(), "selectors/security.txt");
    desk.box()->setMaxVisibleItems(3);
    desk.act("press F4");
    QAbstractItemView *const list = desk.box()->view();
    const auto place = [](QAbstractItemView *view, int row) {
        return view->visualRect(view->model()->index(row, 0)).center();
    };
    // QComboBox takes a click that comes with the one that opened the list for a part of it.
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    QTest::mouseMove(list->viewport(), place(list, 1));
    QCOMPARE(list->currentIndex().row(), 1);
    QVERIFY(list->selectionModel()->isRowSelected(1, {}));

    const QPoint point(4, 4);
    QWheelEvent wheel(point, list->viewport()->mapToGlobal(point), {}, {0, -1200}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(list->viewport(), &wheel);
    QCOMPARE(list->verticalScrollBar()->value(), list->verticalScrollBar()->maximum());
    QCOMPARE(list->indexAt(place(list, 5)).row(), 5);
    QCOMPARE(desk.takeReports(), QString());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place(list, 5));
    QVERIFY(!list->isVisible());
    QCOMPARE(desk.takeReports(), QString("id=15 code=LS name=Lufthansa name=Lufthansa "
                                         "id=15 code=LS name=Lufthansa"));
    desk.act("edit");
    desk.act("type gaz");
    desk.takeReports();
    QTest::mouseClick(desk.completions()->viewport(), Qt::LeftButton, {},
                      place(desk.completions(), 2));
    QCOMPARE(desk.takeReports(),
             QString("id=13 code=GAF name=Gazprom name=Gazprom id=10 code=GA name=Gazprom"));
    QCOMPARE(desk.answer("lit"), QString("-|-|box"));
}

void SelectorsTest::destroyedWithItsPopupsOpen()
{
    for (const char *const kind : {"stock", "codes", "board", "security", "partner"}) {
        for (const char *const opening : {"press F4", "type a"}) {
            SelectorDesk desk(m_host.get(), QString("selectors/%1.txt").arg(kind));
            desk.act(opening);
            QVERIFY(QApplication::activePopupWidget());
            delete desk.source();
            QCOMPARE(desk.box()->count(), 0);
            delete desk.box();
            QVERIFY(!QApplication::activePopupWidget());
        }
    }
}

QTEST_MAIN(SelectorsTest)
#include "tst_selectors.moc"
