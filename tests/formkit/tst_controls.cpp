#include <formkit/checkbox.h>
#include <formkit/dateedit.h>
#include <formkit/groupbox.h>
#include <formkit/label.h>
#include <formkit/lineedit.h>
#include <formkit/numbereditor.h>
#include <formkit/properties.h>
#include <formkit/pushbuttonsend.h>
#include <formkit/quantityeditor.h>
#include <formkit/radiobutton.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>

#include <support/stricttest.h>
#include <support/testhost.h>

#include <QDialog>
#include <QVBoxLayout>

#include <memory>

namespace {

template <typename Control> QWidget *makeOne(QWidget *parent)
{
    return new Control(parent);
}

const QMap<QString, QWidget *(*)(QWidget *)> makers = {
    {"LineEdit", makeOne<LineEdit>},
    {"CheckBox", makeOne<CheckBox>},
    {"RadioButton", makeOne<RadioButton>},
    {"PushButtonSend", makeOne<PushButtonSend>},
    {"DateEdit", makeOne<DateEdit>},
    {"NumberEditor", makeOne<NumberEditor>},
    {"QuantityEditor", makeOne<QuantityEditor>},
    {"StockSelectorBox", makeOne<StockSelectorBox>},
    {"StockSelectorBox_Code", makeOne<StockSelectorBox_Code>},
    {"GroupBox", makeOne<GroupBox>},
    {"Label", makeOne<Label>},
};

// A button says "1", or "0" for a check box that is not checked.
QWidget *make(const QString &name, QWidget *parent)
{
    QWidget *const control = makers[name](parent);
    control->setProperty("value", "1");
    control->setProperty("value_checked", "1");
    control->setProperty("value_unchecked", "0");
    if (auto *button = qobject_cast<QPushButton *>(control))
        button->setCheckable(true);
    return control;
}

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
    void sendButtons();
    void label();
    void groupBox();
    void formFilledAndReadBack();
    void buttonsOfOneName();
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
    QCOMPARE(changes.last().first().toString(), QString("prxyice"));
}

void ControlsTest::checkBox()
{
    CheckBox box;
    QCOMPARE(box.getValue(), QString());
    box.setProperty("value_checked", "Y");
    box.setProperty("value_unchecked", "N");
    QSignalSpy changes(&box, &CheckBox::changedValue);
    for (const char *value : {"Y", "X"}) {
        box.setValue(value);
        QVERIFY(box.isChecked());
    }
    QCOMPARE(messages(), QStringList("undef value for CheckBox::setValue \"X\""));
    QCOMPARE(changes.count(), 0);
    // The signal says what was, the value what is.
    QTest::keyClick(&box, Qt::Key_Space);
    QCOMPARE(changes.takeFirst().first().toString() + box.getValue(), QString("YN"));
}

void ControlsTest::sendButtons()
{
    QDialog form;
    PushButtonSend button(&form), other(&form);
    button.setCheckable(true);
    button.setProperty("value", "Limit");
    QSignalSpy changes(&button, &PushButtonSend::changedValue);
    for (const char *value : {"Limit", "Market"}) {
        button.setValue(value);
        QVERIFY(button.isDefault());
        QCOMPARE(button.icon().isNull(), button.getValue() == "Market");
    }
    QCOMPARE(changes.count(), 0);
    for (int click = 0; click < 2; ++click) {
        button.click();
        QCOMPARE(changes.takeFirst().first().toString(), QString("Limit"));
        QVERIFY(button.getValue() == "Limit" && !button.icon().isNull());
    }
}

void ControlsTest::label()
{
    Label label("Price");
    label.clearError();
    label.setError("not a multiple of the tick");
    QCOMPARE(label.styleSheet(), QString(" Label{color: red}"));
    label.ensurePolished();
    QCOMPARE(label.palette().color(QPalette::WindowText), QColor(Qt::red));
    label.clearError();
    QCOMPARE(label.styleSheet(), QString(" "));
    QCOMPARE(label.toolTip(), QString("not a multiple of the tick"));
    label.setError();
    QCOMPARE(label.toolTip(), QString());
    label.init_label();
    label.clearError();
    QCOMPARE(label.styleSheet(), QString(" Label{color: red}"));
}

void ControlsTest::groupBox()
{
    GroupBox box;
    auto *inside = new LineEdit(&box);
    QSignalSpy values(&box, &GroupBox::setProp_Value);
    box.prop_Value_changed("1");
    QCOMPARE(values.count(), 0);
    Properties hub;
    QVERIFY(hub.connectAll(&box));
    QCOMPARE(hub.objectProperty(&box) + hub.objectProperty(inside), QStringList("Value"));
}

// Two of every control that the hub binds, each under a name of its own, also after texts that
// fit none of them.
void ControlsTest::formFilledAndReadBack()
{
    TestHost host;
    host.table("stocks").setRows({{1, "Nasdaq", "XNAS"}, {2, "Xetra", "XETR"}});
    const QMap<QString, QStringList> contents = {
        {"LineEdit", {"a comment", " another; with=signs "}},
        {"CheckBox", {"1", "0"}},
        {"RadioButton", {"1", "0"}},
        {"PushButtonSend", {"1", "0"}},
        {"DateEdit", {"2015.03.01 00:00:00.000", "1999.12.31 00:00:00.000"}},
        {"NumberEditor", {"-1234567.50", "0.01"}},
        {"QuantityEditor", {"1000", "0"}},
        {"StockSelectorBox", {"2", "1"}},
    };
    QWidget form;
    Values filled;
    QMap<QString, QWidget *> controls;
    for (auto content = contents.cbegin(); content != contents.cend(); ++content) {
        for (int i = 0; i < 2; ++i) {
            const QString field = content.key() + QString::number(i);
            QWidget *const control = make(content.key(), new QWidget(&form));
            control->setProperty("field", field);
            if (content.key() == "StockSelectorBox")
                control->setProperty("fields", QString("Code%1=StockCode Name%1=Stock").arg(i));
            controls[field] = control;
            filled.insert(field, content->at(i));
        }
    }
    Properties hub;
    QVERIFY(hub.connectAll(&form));
    const QStringList texts = {QString(),
                               QString(3, QChar(0)),
                               QString(QChar(0xdc00)),
                               QString(QChar(0x202e)) + QChar(0x0661),
                               "%1 &x <b>y</b> \U0001f4c8",
                               "99999999999999999999",
                               "2015.02.29 25:61:00.000",
                               QString(100000, 'x')};
    for (const QString &text : texts) {
        for (const QString &field : filled.keys())
            hub.setValue(field, text);
        form.grab();
        hub.setValues(filled);
        const Values read = hub.values();
        for (const QString &field : filled.keys()) {
            QCOMPARE(userValue(controls[field]), filled[field].toString());
            QCOMPARE(read[field], filled[field].toString());
        }
        QCOMPARE(read["Code0"] + read["Name1"], QString("XETRNasdaq"));
    }
    QTest::keyClicks(controls["LineEdit1"], "x");
    QCOMPARE(hub.values()["LineEdit0"].toString(), QString("a comment"));
    QVERIFY(hub.values()["LineEdit1"].toString().endsWith('x'));
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
    QSignalSpy changes(&buy, &RadioButton::changedValue);
    for (const QString side : {"Sell", "Buy", "Sell"}) {
        hub.setValue("Side", side);
        QVERIFY(buttons[side]->isChecked() && buy.isChecked() != sell.isChecked());
        QCOMPARE(buy.getValue(), side);
    }
    QCOMPARE(changes.count(), 0);
    QTest::keyClick(&buy, Qt::Key_Space);
    QCOMPARE(changes.takeFirst().first().toString(), QString("Buy"));
    market.click();
    QCOMPARE(hub.values()["Side"].toString() + sell.getValue(), QString("BuyBuy"));
    QCOMPARE(hub.values()["Type"].toString(), QString("Market"));
    QVERIFY(limit.icon().isNull() && !market.icon().isNull());
}

// In any order with the hub, before and after it, and with the focus.
void ControlsTest::destruction()
{
    TestHost host;
    host.table("stocks").addRow({1, "Nasdaq", "XNAS"});
    const QStringList names = makers.keys();
    for (int first = 0; first < names.size(); ++first) {
        for (const bool hubFirst : {false, true}) {
            QWidget form;
            auto hub = std::make_unique<Properties>();
            QVector<QWidget *> controls;
            for (const QString &name : names)
                controls << make(name, &form);
            hub->connectAll(&form);
            form.show();
            controls[first]->setFocus();
            if (auto *box = qobject_cast<QComboBox *>(controls[first])) {
                box->setEditText("half");
                box->showPopup();
            }
            if (hubFirst)
                hub.reset();
            for (int i = 0; i < controls.size(); ++i) {
                delete controls[(first + i) % controls.size()];
                if (hub) {
                    hub->setValue("Value", QString::number(i));
                    hub->setValue("StockId", QString::number(i));
                }
            }
        }
    }
}

QTEST_MAIN(ControlsTest)
#include "tst_controls.moc"
