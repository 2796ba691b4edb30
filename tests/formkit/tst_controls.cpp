#include <formkit/checkbox.h>
#include <formkit/dateedit.h>
#include <formkit/label.h>
#include <formkit/lineedit.h>
#include <formkit/numbereditor.h>
#include <formkit/properties.h>
#include <formkit/pushbuttonsend.h>
#include <formkit/quantityeditor.h>
#include <formkit/radiobutton.h>
#include <formkit/stockselectorbox.h>

#include <support/stricttest.h>
#include <support/testhost.h>

#include <memory>

namespace {

// A control that the hub binds, two values of it, and how to make one.
struct Kind
{
    const char *values[2];
    QWidget *(*make)(QWidget *);
};

template <typename Control> QWidget *make(QWidget *parent)
{
    auto *const control = new Control(parent);
    control->setProperty("value", "1");
    control->setProperty("value_checked", "1");
    control->setProperty("value_unchecked", "0");
    if (control->metaObject()->indexOfProperty("checkable") >= 0)
        control->setProperty("checkable", true);
    return control;
}

const Kind kinds[] = {
    {{"a comment", " another; with=signs "}, make<LineEdit>},
    {{"1", "0"}, make<CheckBox>},
    {{"1", "0"}, make<RadioButton>},
    {{"1", "0"}, make<PushButtonSend>},
    {{"2015.03.01 00:00:00.000", "1999.12.31 00:00:00.000"}, make<DateEdit>},
    {{"-1234567.50", "0.01"}, make<NumberEditor>},
    {{"1000", "0"}, make<QuantityEditor>},
    {{"2", "1"}, make<StockSelectorBox>},
};

QString userValue(const QObject *control)
{
    return control->metaObject()->userProperty().read(control).toString();
}

} // namespace

class ControlsTest : public StrictTest
{
    Q_OBJECT

private slots:
    void lineEdit();
    void checkBox();
    void buttonsOfOneName();
    void label();
    void formFilledAndReadBack();
    void anyText();
    void destruction();
};

void ControlsTest::lineEdit()
{
    LineEdit edit;
    QSignalSpy changes(&edit, &LineEdit::changedValue);
    edit.setValue("price");
    edit.setCursorPosition(2);
    edit.setValue("price");
    QCOMPARE(edit.cursorPosition(), 2);
    QCOMPARE(changes.count(), 0);
    QTest::keyClicks(&edit, "xy");
    QCOMPARE(changes.count(), 2);
    QCOMPARE(changes[1][0].toString(), QString("prxyice"));
}

void ControlsTest::checkBox()
{
    CheckBox box;
    box.setProperty("value_checked", "Y");
    box.setProperty("value_unchecked", "N");
    QSignalSpy changes(&box, &CheckBox::changedValue);
    for (const char *value : {"N", "Y", "X"})
        box.setValue(value);
    QCOMPARE(box.getValue(), QString("Y"));
    QCOMPARE(messages(), QStringList("undef value for CheckBox::setValue \"X\""));
    QCOMPARE(changes.count(), 0);
    QTest::keyClick(&box, Qt::Key_Space);
    QCOMPARE(changes[0][0].toString(), QString("Y"));
    QCOMPARE(box.getValue(), QString("N"));
}

void ControlsTest::buttonsOfOneName()
{
    QWidget form;
    RadioButton buy(&form), sell(&form);
    PushButtonSend limit(&form), market(&form);
    const QMap<QString, QAbstractButton *> buttons = {
        {"Buy", &buy}, {"Sell", &sell}, {"Limit", &limit}, {"Market", &market}};
    for (auto button = buttons.cbegin(); button != buttons.cend(); ++button) {
        (*button)->setCheckable(true);
        (*button)->setProperty("value", button.key());
        (*button)->setProperty("field", qobject_cast<QRadioButton *>(*button) ? "Side" : "Type");
    }
    Properties hub;
    hub.connectAll(&form);
    QSignalSpy changes(&market, &PushButtonSend::changedValue);
    QSignalSpy sides(&buy, &RadioButton::changedValue);
    for (const char *side : {"Sell", "Buy", "Sell"}) {
        hub.setValue("Side", side);
        QVERIFY(buttons[side]->isChecked() && buy.isChecked() != sell.isChecked());
        QCOMPARE(buy.getValue() + sell.getValue(), QString(side).repeated(2));
    }
    hub.setValue("Type", "Limit");
    QVERIFY(limit.isDefault() && !limit.icon().isNull() && market.icon().isNull());
    QTest::keyClick(&buy, Qt::Key_Space);
    QCOMPARE(sides.takeFirst()[0].toString(), QString("Buy"));
    for (int click = 0; click < 2; ++click) {
        QCOMPARE(changes.count(), click);
        market.click();
        QCOMPARE(hub.values().value("Side").toString(), QString("Buy"));
        QCOMPARE(hub.values().value("Type").toString(), QString("Market"));
        QVERIFY(limit.isDefault() && limit.icon().isNull() && !market.icon().isNull());
    }
}

void ControlsTest::label()
{
    Label label("Price");
    label.clearError();
    QCOMPARE(label.styleSheet(), QString());
    label.setError("not a multiple of the tick");
    label.ensurePolished();
    QCOMPARE(label.styleSheet(), QString(" Label{color: red}"));
    QCOMPARE(label.palette().color(QPalette::WindowText), QColor(Qt::red));
    label.clearError();
    QCOMPARE(label.styleSheet(), QString(" "));
    QCOMPARE(label.toolTip(), QString("not a multiple of the tick"));
}

// Two of every control, each under a name of its own.
void ControlsTest::formFilledAndReadBack()
{
    TestHost host;
    host.table("stocks").setRows({{1, "Nasdaq", "XNAS"}, {2, "Xetra", "XETR"}});
    QWidget form;
    Values filled;
    QMap<QString, QWidget *> controls;
    for (const Kind &kind : kinds) {
        for (int i = 0; i < 2; ++i) {
            const QString field = "Field" + QString::number(controls.size());
            controls[field] = kind.make(new QWidget(&form));
            controls[field]->setProperty("field", field);
            // An exchange box has more to say than one name can take.
            controls[field]->setProperty("fields", field + "c=StockCode " + field + "n=Stock");
            filled.insert(field, kind.values[i]);
        }
    }
    Properties hub;
    QVERIFY(hub.connectAll(&form));
    hub.setValues(filled);
    for (auto field = controls.cbegin(); field != controls.cend(); ++field) {
        QCOMPARE(userValue(*field), filled.value(field.key()).toString());
        QCOMPARE(hub.values().value(field.key()), filled.value(field.key()));
    }
    QTest::keyClicks(controls["Field1"], "x");
    QCOMPARE(hub.values().value("Field0").toString(), QString("a comment"));
    QCOMPARE(hub.values().value("Field1").toString(), QString(" another; with=signs x"));
}

// Whatever the program sets: the control stays sound and takes the next good value.
void ControlsTest::anyText()
{
    const QString texts[] = {QString(3, QChar(0)),
                             QString(QChar(0xdc00)) + QChar(0x202e),
                             "%1 &x <b>y</b> yyyy.MM.dd\r\n",
                             "99999999999999999999",
                             "2015.02.29 25:61:00.000",
                             QString(100000, 'x')};
    TestHost host;
    host.table("stocks").setRows({{0, "", ""}, {1, "Nasdaq", "XNAS"}, {2, "Xetra", "XETR"}});
    for (const QString &text : texts) {
        for (const Kind &kind : kinds) {
            QWidget form;
            QWidget *const control = kind.make(&form);
            const char *const name = control->metaObject()->userProperty().name();
            Properties hub;
            hub.connectAll(control);
            hub.setValue(name, text);
            control->grab();
            hub.setValue(name, kind.values[0]);
            QCOMPARE(userValue(control), QString(kind.values[0]));
            QCOMPARE(hub.values().value(name).toString(), QString(kind.values[0]));
        }
    }
}

// In any order, before and after the hub, with the focus and the pop-up open.
void ControlsTest::destruction()
{
    TestHost host;
    const int count = int(std::size(kinds));
    for (int first = 0; first < 2 * count; ++first) {
        QWidget form;
        auto hub = std::make_unique<Properties>();
        QVector<QWidget *> controls;
        for (const Kind &kind : kinds)
            controls << kind.make(&form);
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

QTEST_MAIN(ControlsTest)
#include "tst_controls.moc"
