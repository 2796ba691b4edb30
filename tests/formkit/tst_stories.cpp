#include "desk.h"

#include <formkit/partnerselectorbox.h>
#include <hostapi/exception.h>

#include <support/stricttest.h>

#include <QApplication>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>

Q_DECLARE_METATYPE(DataRow)

namespace {

// The classes of the controls that the hub binds, and a value of each.
const QMap<QString, QString> GoodValues = {{"LineEdit", " a; with=signs "},
                                           {"CheckBox", "1"},
                                           {"RadioButton", "1"},
                                           {"PushButtonSend", "1"},
                                           {"DateEdit", "2015.03.01 00:00:00.000"},
                                           {"NumberEditor", "-1234567.50"},
                                           {"QuantityEditor", "1000"},
                                           {"StockSelectorBox", "2"}};
const QStringList Boxes = QString("ComboBox DateEdit StockSelectorBox BoardSelectorBox "
                                  "SecuritySelectorBox PartnerSelectorBox StockSelectorBox_Code")
                              .split(' ');
const QStringList Selectors = {"stock", "codes", "board", "security", "partner"};

QWidget *make(const QString &className, QWidget *form)
{
    QObject *const control = Desk::create(className, form);
    for (const char *const name : {"value", "value_checked", "checkable"})
        control->setProperty(name, "1");
    return static_cast<QWidget *>(control);
}

} // namespace

class StoriesTest : public StrictTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void stories_data();
    void stories();
    void anyText();
    void destruction();
    void takenApart();
    void quietOpening();
    void failingHost();
    void noHost();
    void destroyedWithItsPopupsOpen();

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
    for (const QString &file : Selectors + QStringList{"hub", "controls", "combobox", "numbers"}) {
        for (const DataRow &story : Desk::storiesOf(file))
            QTest::addRow("%s: %s", qPrintable(file), qPrintable(story.first())) << file << story;
    }
}

void StoriesTest::stories()
{
    QFETCH(QString, file);
    QFETCH(DataRow, story);
    Desk desk(m_host.get(), file);
    desk.play(story);
}

// Whatever the program sets: the control stays sound and takes the next good value.
void StoriesTest::anyText()
{
    const QString texts[] = {QString(3, QChar(0)),
                             QString(QChar(0xdc00)) + QChar(0x202e),
                             "%1 &x <b>y</b> yyyy.MM.dd\r\n",
                             "99999999999999999999",
                             "2015.02.29 25:61:00.000",
                             QString(100000, 'x')};
    m_host->table("stocks").setRows({{0, "", ""}, {1, "Nasdaq", "XNAS"}, {2, "Xetra", "XETR"}});
    for (const QString &text : texts) {
        for (auto good = GoodValues.cbegin(); good != GoodValues.cend(); ++good) {
            QWidget form;
            QWidget *const control = make(good.key(), &form);
            const QMetaProperty user = control->metaObject()->userProperty();
            Properties hub;
            hub.connectAll(control);
            hub.setValue(user.name(), text);
            control->grab();
            hub.setValue(user.name(), *good);
            QCOMPARE(user.read(control).toString(), *good);
            QCOMPARE(hub.values().value(user.name()).toString(), *good);
        }
    }
}

// In any order, before and after the hub, with the focus and the pop-up open.
void StoriesTest::destruction()
{
    const int count = GoodValues.size();
    for (int first = 0; first < 2 * count; ++first) {
        QWidget form;
        auto hub = std::make_unique<Properties>();
        QVector<QWidget *> controls;
        for (const QString &name : GoodValues.keys())
            controls << make(name, &form);
        hub->connectAll(&form);
        form.show();
        controls[first % count]->setFocus();
        if (auto *box = qobject_cast<QComboBox *>(controls[first % count]))
            box->showPopup();
        if (first < count)
            hub.reset();
        for (int i = 0; i < count; ++i) {
            delete controls[(first + i) % count];
            if (hub)
                hub->setValue("Value", QString::number(i));
        }
    }
}

// A box whose model, line edit or source a host has replaced or destroyed.
void StoriesTest::takenApart()
{
    const auto use = [](QComboBox *box) {
        box->show();
        for (const char *const property : {"StockId", "BoardId", "SecurityId", "Partner"}) {
            box->setProperty(property, "1");
            QVERIFY(box->property(property).toString().size() <= 1);
        }
        QTest::keyClicks(box, "x");
        QTest::keyClick(box, Qt::Key_Return);
        box->showPopup();
        box->hidePopup();
    };
    const std::function<void(QComboBox *)> changes[] = {
        [](QComboBox *box) { box->setModel(new QStandardItemModel(2, 1, box)); },
        [](QComboBox *box) { box->setEditable(false); },
        [](QComboBox *box) { delete box->model(); },
        [](QComboBox *box) { delete Desk::sourceOf(box); },
    };
    for (const QString &className : Boxes) {
        for (const auto &change : changes) {
            const std::unique_ptr<QComboBox> box(
                static_cast<QComboBox *>(make(className, nullptr)));
            const QPointer<QAbstractItemModel> model = box->model();
            change(box.get());
            use(box.get());
            if (auto *const proxy = qobject_cast<QSortFilterProxyModel *>(model.data()))
                proxy->setSourceModel(new QStandardItemModel(3, 1, proxy));
            if (auto *const partner = qobject_cast<PartnerSelectorBox *>(box.get()))
                partner->populate();
            use(box.get());
        }
    }
}

// Opening the list clears what was selected there, without a word of it.
void StoriesTest::quietOpening()
{
    Desk desk(m_host.get(), "combobox");
    desk.act("items ABC AB");
    desk.act("row -1");
    QAbstractItemView *const view = desk.box()->view();
    QItemSelectionModel *const selection = view->selectionModel();
    selection->select(view->model()->index(1, 0), QItemSelectionModel::Select);
    QVector<bool> quiet;
    connect(selection, &QItemSelectionModel::selectionChanged,
            [&] { quiet << view->signalsBlocked(); });
    desk.act("press F4");
    QCOMPARE(quiet, QVector<bool>{true});
    QVERIFY(!selection->hasSelection() && !view->signalsBlocked());
}

// At every cell that is read: nothing changes, nothing stays locked.
void StoriesTest::failingHost()
{
    for (const QString box :
         {"stock stocks StockId 5", "board boards BoardId 8", "security securities SecurityId 10",
          "partner gx.diler Partner BB", "codes stocks prop_StockId_changed 2"}) {
        const QStringList words = box.split(' ');
        Desk desk(m_host.get(), words[0]);
        TestTable &rows = m_host->table(words[1]);
        const int before = rows.cellReads();
        desk.act("populate");
        const int cells = rows.cellReads() - before;
        QVERIFY(cells > 0);
        desk.act("set " + words[2] + ' ' + words[3]);
        desk.takeReports();
        const auto state = [&desk] {
            return desk.answer("shows") + desk.answer("ids") + desk.answer("source") +
                   desk.answer("reports");
        };
        const QString shown = state();
        const bool hasModel = words[0] != "partner" && words[0] != "codes";
        const QString refreshes = words[0] == "security" ? "populate|model new|announce"
                                  : hasModel             ? "populate|model new"
                                                         : "populate";
        for (int cell = 1; cell <= cells; ++cell) {
            for (const QString &refresh : refreshes.split('|')) {
                rows.failAtCell(cell);
                QVERIFY_EXCEPTION_THROWN(desk.act(refresh), Exception);
                QCOMPARE(state(), shown);
                QVERIFY(!rows.isLocked());
            }
            rows.failAtCell(cell);
            QVERIFY_EXCEPTION_THROWN(Desk(m_host.get(), words[0]), Exception);
        }
    }
}

void StoriesTest::noHost()
{
    ICore::install(nullptr);
    for (const QString &kind : Selectors) {
        Desk desk(m_host.get(), kind);
        desk.act("populate");
        for (const char *const name : {"StockId", "BoardId", "SecurityId", "Partner"})
            desk.box()->setProperty(name, "1");
        for (const char *const step : {"type x", "press F4", "press End", "press Escape", "leave"})
            desk.act(step);
        QCOMPARE(desk.answer("ids"), QString());
        QCOMPARE(desk.answer("edit.toolTip"), QString("Not in the list"));
    }
    ICore::install(m_host.get());
    m_host->removeTable("stocks");
    expectWarning("ICore::table: the host has no table \"stocks\"");
    Desk desk(m_host.get(), "stock");
    QCOMPARE(desk.box()->count(), 0);
}

void StoriesTest::destroyedWithItsPopupsOpen()
{
    for (const QString &kind : Selectors) {
        for (const char *const opening : {"press F4", "type a"}) {
            Desk desk(m_host.get(), kind);
            desk.act(opening);
            QVERIFY(QApplication::activePopupWidget());
            delete desk.source();
            QCOMPARE(desk.box()->count(), 0);
            delete desk.box();
            QVERIFY(!QApplication::activePopupWidget());
        }
    }
}

int main(int argc, char **argv)
{
    QLocale::setDefault(QLocale("en_US"));
    QApplication application(argc, argv);
    StoriesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_stories.moc"
