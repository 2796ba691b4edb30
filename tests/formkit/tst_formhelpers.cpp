#include <formkit/formselector.h>
#include <formkit/formvalidation.h>
#include <formkit/lineedit.h>
#include <formkit/properties.h>
#include <formkit/state.h>
#include <formkit/summator.h>

#include "support/stricttest.h"

#include <QLabel>
#include <QLoggingCategory>
#include <QStateMachine>

// The small members of a form: the sum of two fields, the marking of invalid captions, the
// state that traces itself.
class FormHelpersTest : public StrictTest
{
    Q_OBJECT

private slots:
    void sum_data();
    void sum();
    void sumReportsChangesOnly();
    void captionsOfRejectedNames();
    void captionsThatDie();
    void stateTrace();
};

void FormHelpersTest::sum_data()
{
    QTest::addColumn<QString>("price");
    QTest::addColumn<QString>("offset");
    QTest::addColumn<QString>("total");
    const QString largest("9223372036854775807");
    const QVector<QStringList> rows = {
        {"two scales", "10.5", "0.25", "10.75"},
        {"zeros stay", "0.999", "0.001", "1.000"},
        {"below zero", "0.1", "-0.35", "-0.25"},
        {"beyond a double", "90071992547409.93", "0.01", "90071992547409.94"},
        {"comma in the addendum", "1", "1,5", "1"},
        {"comma in the summand", "1,5", "1", "1,5"},
        {"lone minus", "-", "1", "-"},
        {"empty addendum", "1.50", "", "1.50"},
        {"empty summand", "", "1", ""},
        {"exponent", "1", "1e5", "1"},
        {"sum too large", largest, "1", largest},
        {"sum too small", '-' + largest, "-2", '-' + largest},
        {"summand too large for the scale", largest, "0.1", largest},
        {"text too long", largest + '0', "1", largest + '0'},
    };
    for (const QStringList &row : rows)
        QTest::newRow(qPrintable(row[0])) << row[1] << row[2] << row[3];
}

void FormHelpersTest::sum()
{
    QFETCH(QString, price);
    QFETCH(QString, offset);
    Properties hub;
    Summator summator;
    summator.setProperty("fields", "Price=Summand Offset=Addendum Total=Value");
    hub.connectAll(&summator);
    hub.setValue("Price", price);
    hub.setValue("Offset", offset);
    QTEST(summator.getValue(), "total");
    QTEST(hub.values().value("Total").toString(), "total");
    QCOMPARE(summator.getSummand() + '|' + summator.getAddendum(), price + '|' + offset);
}

void FormHelpersTest::sumReportsChangesOnly()
{
    Summator summator;
    QSignalSpy reports(&summator, &Summator::changedValue);
    const auto reported = [&reports] { return reports.isEmpty() ? "" : reports.takeFirst()[0]; };
    summator.setSummand("10.5");
    QCOMPARE(reported(), QVariant("10.5"));
    summator.setAddendum("0.25");
    QCOMPARE(reported(), QVariant("10.75"));
    summator.setSummand("10.5");
    summator.setAddendum("0.25");
    summator.update();
    QCOMPARE(reports.count(), 0);
    summator.setAddendum("x");
    QCOMPARE(reported(), QVariant("10.5"));
    summator.setAddendum("y");
    QCOMPARE(reports.count(), 0);
}

namespace {

struct Form
{
    Form()
    {
        caption->setBuddy(price);
        boardCaption->setBuddy(board);
        price->setProperty("field", "Price");
        hub.connectAll(&window);
        validation.setupPropWidgets(hub, &window);
    }
    // The captions in red: "c", "b" or both.
    QString red() const
    {
        const auto isRed = [](QLabel *label) {
            return label && label->styleSheet() == QLatin1String("color: red");
        };
        return QString(isRed(caption) ? "c" : "") + QString(isRed(boardCaption) ? "b" : "");
    }

    QWidget window;
    LineEdit *price = new LineEdit(&window);
    FormSelector *board = new FormSelector(&window);
    QPointer<QLabel> caption = new QLabel(&window);
    QPointer<QLabel> boardCaption = new QLabel(&window);
    Properties hub;
    FormValidation validation;
};

} // namespace

void FormHelpersTest::captionsOfRejectedNames()
{
    Form form;
    const QVector<QPair<QStringList, QString>> steps = {
        {{"Price"}, "c"},   {{"BoardId"}, "b"}, {{"StockId", "BoardId", "Price"}, "cb"},
        {{"StockId"}, "b"}, {{"Value"}, ""},    {{"Price", "Price"}, "c"},
        {{}, ""},
    };
    for (const auto &[names, red] : steps) {
        form.validation.set(names);
        QCOMPARE(form.red(), red);
    }
    form.validation.setInvalidWidgets({form.price, nullptr, form.caption});
    QCOMPARE(form.red(), QString("c"));
    QVERIFY(form.price->styleSheet().isEmpty());
}

void FormHelpersTest::captionsThatDie()
{
    Form form;
    form.validation.set({"Price", "StockId"});
    delete form.caption;
    QCOMPARE(form.red(), QString("b"));
    form.validation.set({"Price"});
    QCOMPARE(form.red(), QString());

    form.caption = new QLabel(&form.window);
    form.caption->setBuddy(form.price);
    form.validation.setupPropWidgets(form.hub, &form.window);
    form.validation.setupPropWidgets(form.hub, nullptr);
    form.validation.set({"Price", "StockId"});
    QCOMPARE(form.red(), QString("cb"));
}

void FormHelpersTest::stateTrace()
{
    QStateMachine machine;
    QState plain(&machine);
    auto *top = new State("Top", &plain);
    auto *mid = new State("Order", "Mid", top);
    auto *leaf = new State("Order", "Leaf", QState::ParallelStates, mid);
    plain.setInitialState(top);
    top->setInitialState(mid);
    mid->setInitialState(leaf);
    machine.setInitialState(&plain);
    QCOMPARE(top->objectName() + ' ' + leaf->objectName(), QString("Top Order::Leaf"));
    QCOMPARE(leaf->childMode(), QState::ParallelStates);

    const auto run = [&] {
        machine.start();
        QTRY_VERIFY(leaf->active());
        machine.stop();
        QTRY_VERIFY(!machine.isRunning());
    };
    run();
    leaf->setName("Last");
    leaf->setPrefix("Ticket");
    QCOMPARE(leaf->objectName(), QString("Order::Leaf"));
    auto *away = new QState(&machine);
    leaf->addTransition(away);
    machine.start();
    QTRY_VERIFY(away->active());
    QCOMPARE(messages(), QStringList({
                             "Entering state:   :: Top",
                             "Entering state:  Order :: Top->Mid",
                             "Entering state:  Order :: Top->Mid->Leaf",
                             "Entering state:   :: Top",
                             "Entering state:  Order :: Top->Mid",
                             "Entering state:  Ticket :: Top->Mid->Last",
                             "Exiting state:  Ticket :: Top->Mid->Last",
                             "Exiting state:  Order :: Top->Mid",
                             "Exiting state:   :: Top",
                         }));

    machine.stop();
    QTRY_VERIFY(!machine.isRunning());
    QLoggingCategory::setFilterRules("QGuiLog.debug=false");
    machine.start();
    QTRY_VERIFY(away->active());
    QLoggingCategory::setFilterRules(QString());
    QCOMPARE(messages().size(), 9);
}

QTEST_MAIN(FormHelpersTest)
#include "tst_formhelpers.moc"
