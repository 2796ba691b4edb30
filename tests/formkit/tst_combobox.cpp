#include <formkit/boardselectorbox.h>
#include <formkit/combobox.h>
#include <formkit/dateedit.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/securityselectorbox.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>

#include <support/stricttest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <memory>

using Make = QComboBox *(*)();
Q_DECLARE_METATYPE(Make)

class ComboBoxTest : public StrictTest
{
    Q_OBJECT

private slots:
    void newBox();
    void validator_data();
    void validator();
    void validatorOfADeadModel();
    void popup();
    void manners_data();
    void manners();
    void takenApart_data() { manners_data(); }
    void takenApart();
};

void ComboBoxTest::newBox()
{
    ComboBox box;
    QCOMPARE(box.currentIndex(), -1);
    box.addItems({"Nasdaq", "Xetra"});
    box.setCurrentIndex(-1);
    QTest::keyClicks(&box, "xe");
    QCOMPARE(box.completer()->currentCompletion(), QString("Xetra"));
    QCOMPARE(box.comboBoxValidator()->parent(), box.lineEdit());
    QVERIFY(!box.lineEdit()->validator());
    box.setEditable(false);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!box.comboBoxValidator());
}

void ComboBoxTest::validator_data()
{
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("input");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("fixed");
    const auto row = [](const char *name, const char *rows, const char *input, int state,
                        const char *fixed) {
        const QStringList list = QString(rows).split(' ', Qt::SkipEmptyParts);
        QTest::newRow(name) << list << input << state << fixed;
    };
    row("the first row that starts so decides", "ABC AB", "ab", QValidator::Intermediate, "ABC");
    row("whole row in another case", "ABC AB", "abc", QValidator::Acceptable, "ABC");
    row("no row", "ABC AB", "abcd", QValidator::Invalid, "abcd");
    row("empty", "ABC AB", "", QValidator::Intermediate, "");
    row("no rows", "", "a", QValidator::Invalid, "a");
    row("a later row", "Bx МИР", "ми", QValidator::Intermediate, "МИР");
}

void ComboBoxTest::validator()
{
    QFETCH(QStringList, rows);
    QFETCH(QString, input);
    ComboBox box;
    box.addItems(rows);
    int pos = 0;
    QTEST(int(box.comboBoxValidator()->validate(input, pos)), "state");
    box.comboBoxValidator()->fixup(input);
    QTEST(input, "fixed");
}

void ComboBoxTest::validatorOfADeadModel()
{
    ComboBoxValidator validator;
    auto model = std::make_unique<QStandardItemModel>(3, 1);
    validator.setModel(model.get());
    model.reset();
    QString text;
    int pos = 0;
    QCOMPARE(validator.validate(text, pos), QValidator::Invalid);
    validator.fixup(text = "a");
    QCOMPARE(text, QString("a"));
}

void ComboBoxTest::popup()
{
    ComboBox box;
    box.addItems({"ABC", "AB"});
    box.setCurrentIndex(-1);
    QItemSelectionModel *const selection = box.view()->selectionModel();
    selection->select(box.model()->index(1, 0), QItemSelectionModel::Select);
    QVector<bool> quiet;
    connect(selection, &QItemSelectionModel::selectionChanged,
            [&] { quiet << box.view()->signalsBlocked(); });
    box.show();
    box.showPopup();
    QCOMPARE(quiet, QVector<bool>{true});
    QVERIFY(!selection->hasSelection() && !box.view()->signalsBlocked());
}

void ComboBoxTest::manners_data()
{
    QTest::addColumn<Make>("makeBox");
    QTest::newRow("ComboBox") << Make([]() -> QComboBox * { return new ComboBox; });
    QTest::newRow("DateEdit") << Make([]() -> QComboBox * { return new DateEdit; });
    QTest::newRow("exchange") << Make([]() -> QComboBox * { return new StockSelectorBox; });
    QTest::newRow("code") << Make([]() -> QComboBox * { return new StockSelectorBox_Code; });
    QTest::newRow("board") << Make([]() -> QComboBox * { return new BoardSelectorBox; });
    QTest::newRow("security") << Make([]() -> QComboBox * { return new SecuritySelectorBox; });
    QTest::newRow("partner") << Make([]() -> QComboBox * { return new PartnerSelectorBox; });
}

void ComboBoxTest::manners()
{
    QFETCH(Make, makeBox);
    QWidget form;
    auto *const layout = new QVBoxLayout(&form);
    QLineEdit before;
    QLabel caption("B&uy && sell");
    QComboBox *const box = makeBox();
    caption.setBuddy(box);
    layout->addWidget(&before);
    layout->addWidget(&caption);
    layout->addWidget(box);
    const auto spoken = [box] {
        return QAccessible::queryAccessibleInterface(box->lineEdit())->text(QAccessible::Name);
    };
    form.show();
    QCOMPARE(spoken(), QString("Buy & sell"));
    before.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    caption.setText("Odd &");
    QTest::keyClick(&before, Qt::Key_Tab);
    QVERIFY(box->hasFocus());
    QCOMPARE(spoken(), QString("Odd "));

    QTest::keyClicks(box, "unheard");
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(box->count(), 0);

    box->setModel(new QStandardItemModel(3, 1, box));
    box->setCurrentIndex(0);
    const auto turnWheel = [box] {
        QWheelEvent event({1, 1}, box->mapToGlobal({1, 1}), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(box, &event);
        return box->currentIndex();
    };
    before.setFocus();
    QCOMPARE(turnWheel(), 0);
    QVERIFY(!(box->focusPolicy() & ~Qt::StrongFocus));
    box->setFocus();
    QCOMPARE(turnWheel(), 1);
}

// A box whose model, line edit or source a host has replaced or destroyed.
void ComboBoxTest::takenApart()
{
    QFETCH(Make, makeBox);
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
    using Change = void (*)(QComboBox *);
    for (const Change change :
         {Change([](QComboBox *box) { box->setModel(new QStandardItemModel(2, 1, box)); }),
          Change([](QComboBox *box) { delete box->model(); }), Change([](QComboBox *box) {
              auto *const proxy = qobject_cast<QAbstractProxyModel *>(box->model());
              delete (proxy ? proxy->sourceModel() : nullptr);
          }),
          Change([](QComboBox *box) { box->setEditable(false); })}) {
        const std::unique_ptr<QComboBox> box(makeBox());
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

QTEST_MAIN(ComboBoxTest)
#include "tst_combobox.moc"
