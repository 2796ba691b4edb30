#include <formkit/formselector.h>
#include <formkit/formvalidation.h>
#include <formkit/lineedit.h>
#include <formkit/properties.h>
#include <formkit/state.h>
#include <formkit/summator.h>

#include "support/stricttest.h"

#include <QLabel>
#include <QStateMachine>

// The small members of a form: the sum of two fields, the marking of invalid captions, the
// state that traces itself.
class FormHelpersTest : public StrictTest
{
    Q_OBJECT

private slots:
    void sum();
    void sumReportsChangesOnly();
    void captionsOfRejectedNames();
    void stateTrace();
};

void FormHelpersTest::sum()
{
    const QString largest("9223372036854775807");
    const QStringList rows[] = {
        {"10.5", "0.25", "10.75"},
        {"0.999", "0.001", "1.000"},
        {"0.1", "-0.35", "-0.25"},
        {"90071992547409.93", "0.01", "90071992547409.94"},
        {"1", "1,5", "1"},
        {"1,5", "1", "1,5"},
        {"-", "1", "-"},
        {"1.50", "", "1.50"},
        {"", "1", ""},
        {largest, "1", largest},
        {largest, "0.1", largest},
        {largest + '0', "1", largest + '0'},
    };
    for (const QStringList &row : rows) {
        Properties hub;
        Summator summator;
        summator.setProperty("fields", "Price=Summand Offset=Addendum Total=Value");
        hub.connectAll(&summator);
        hub.setValue("Price", row[0]);
        hub.setValue("Offset", row[1]);
        QCOMPARE(hub.values().value("Total").toString(), row[2]);
    }
}

void FormHelpersTest::sumReportsChangesOnly()
{
    Summator summator;
    QStringList reports;
    connect(&summator, &Summator::changedValue, [&](const QString &value) { reports << value; });
    summator.setSummand("10.5");
    for (const char *addendum : {"0.25", "0.25", "0.250", "0.250", "x", "y"}) {
        summator.setAddendum(addendum);
        summator.setSummand("10.5");
    }
    QCOMPARE(reports, QStringList({"10.5", "10.75", "10.750", "10.5"}));
    summator.report();
    QCOMPARE(reports.size(), 5);
}

void FormHelpersTest::captionsOfRejectedNames()
{
    QWidget form;
    LineEdit price(&form);
    FormSelector board(&form); // bound as StockId and as BoardId
    auto *caption = new QLabel(&form);
    QLabel other(&form);
    other.setBuddy(&board);
    Properties hub;
    hub.connectAll(&form);
    FormValidation validation;
    const auto learn = [&](QLabel *label) {
        label->setBuddy(&price);
        validation.setupPropWidgets(hub, &form);
    };
    const auto check = [&](const char *names, const QString &first, const QString &second) {
        validation.set(QString(names).split(' ', Qt::SkipEmptyParts));
        QCOMPARE(caption->styleSheet() + '/' + other.styleSheet(), first + '/' + second);
    };
    const QString red("color: red");
    validation.setupPropWidgets(hub, nullptr);
    learn(caption);
    check("Value", red, "");
    check("BoardId", "", red);
    check("StockId BoardId Value", red, red);
    check("Price", "", "");
    validation.setInvalidWidgets({&price, nullptr, caption, &other});
    QCOMPARE(caption->styleSheet() + price.styleSheet(), red);
    check("", "", "");
    delete caption;
    validation.set({"Value"});
    caption = new QLabel(&form);
    learn(caption);
    check("Value StockId", red, red);
}

void FormHelpersTest::stateTrace()
{
    QStateMachine machine;
    QState plain(&machine);
    auto *top = new State("Top", &plain);
    auto *leaf = new State("Order", "Leaf", QState::ParallelStates, top);
    auto *away = new QState(&machine);
    machine.setInitialState(&plain);
    plain.setInitialState(top);
    top->setInitialState(leaf);
    leaf->addTransition(away);
    leaf->setName("Last");
    leaf->setPrefix("Ticket");
    QCOMPARE(top->objectName() + ' ' + leaf->objectName(), QString("Top Order::Leaf"));

    machine.start();
    QTRY_VERIFY(away->active());
    const QStringList trace = {"Entering state:   :: Top", "Entering state:  Ticket :: Top->Last",
                               "Exiting state:  Ticket :: Top->Last", "Exiting state:   :: Top"};
    QCOMPARE(messages(), trace);
}

QTEST_MAIN(FormHelpersTest)
#include "tst_formhelpers.moc"
