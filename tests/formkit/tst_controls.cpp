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
    void radioButtons();
    void sendButtons();
    void label();
    void groupBox();
    void formFilledAndReadBack();
    void buttonsOfOneName();
    void anyText_data();
    void anyText();
    void destruction();
};

void ControlsTest::lineEdit()
{
    LineEdit edit;
    QSignalSpy changes(&edit, &LineEdit::changedValue);
    QSignalSpy texts(&edit, &QLineEdit::textChanged);
    edit.setValue("price");
    QCOMPARE(edit.getValue(), QString("price"));
    edit.setCursorPosition(2);
    edit.setValue("price");
    QCOMPARE(edit.cursorPosition(), 2);
    QCOMPARE(texts.count(), 1);
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
    box.setValue("Y");
    QVERIFY(box.isChecked());
    box.setValue("X");
    QVERIFY(box.isChecked());
    QCOMPARE(messages(), QStringList("undef value for CheckBox::setValue \"X\""));
    QCOMPARE(changes.count(), 0);

    QTest::keyClick(&box, Qt::Key_Space);
    QCOMPARE(changes.takeFirst().first().toString(), QString("Y"));
    QCOMPARE(box.getValue(), QString("N"));
    box.setValue("Y");
    box.setValue("N");
    QVERIFY(!box.isChecked());
}

void ControlsTest::radioButtons()
{
    QWidget form;
    RadioButton buy(&form), sell(&form);
    buy.setProperty("value", "B");
    sell.setProperty("value", "S");
    QSignalSpy changes(&sell, &RadioButton::changedValue);
    for (RadioButton *button : {&buy, &sell})
        button->setValue("B");
    QVERIFY(buy.isChecked() && !sell.isChecked());
    QCOMPARE(sell.getValue(), QString("B"));
    QTest::keyClick(&sell, Qt::Key_Space);
    QVERIFY(!buy.isChecked());
    QCOMPARE(sell.getValue(), QString("S"));
    QCOMPARE(changes.takeFirst().first().toString(), QString("S"));
}

void ControlsTest::sendButtons()
{
    QDialog form;
    PushButtonSend button(&form), other(&form);
    button.setCheckable(true);
    button.setProperty("value", "Limit");
    QSignalSpy changes(&button, &PushButtonSend::changedValue);
    button.setValue("Limit");
    QVERIFY(button.isDefault());
    QVERIFY(!button.icon().isNull());
    button.setValue("Market");
    QVERIFY(button.isDefault());
    QVERIFY(button.icon().isNull());
    QCOMPARE(button.getValue(), QString("Market"));
    QCOMPARE(changes.count(), 0);

    for (int click = 0; click < 2; ++click) {
        button.click();
        QCOMPARE(changes.takeFirst().first().toString(), QString("Limit"));
        QCOMPARE(button.getValue(), QString("Limit"));
        QVERIFY(!button.icon().isNull());
    }
}

void ControlsTest::label()
{
    Label label("Price");
    label.clearError();
    QCOMPARE(label.styleSheet(), QString());
    label.setError("not a multiple of the tick");
    QCOMPARE(label.styleSheet(), QString(" Label{color: red}"));
    QCOMPARE(label.toolTip(), QString("not a multiple of the tick"));
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
    QVERIFY(hub.objectProperty(&box).isEmpty());
    QCOMPARE(hub.objectProperty(inside), QStringList("Value"));
}

// Two of every control that the hub binds, each under a name of its own.
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
            controls[field] = make(content.key(), new QWidget(&form));
            controls[field]->setProperty("field", field);
            if (content.key() == "StockSelectorBox")
                controls[field]->setProperty(
                    "fields", QStringLiteral("Code%1=StockCode Name%1=Stock").arg(i));
            filled.insert(field, content->at(i));
        }
    }
    Properties hub;
    QVERIFY(hub.connectAll(&form));
    hub.setValues(filled);

    QCOMPARE(hub.values()["Code0"].toString(), QString("XETR"));
    QCOMPARE(hub.values()["Name1"].toString(), QString("Nasdaq"));
    Values read;
    for (const QString &field : filled.keys()) {
        QCOMPARE(userValue(controls[field]), filled[field].toString());
        read.insert(field, hub.values().value(field));
    }
    QCOMPARE(read, filled);

    hub.setValues(Values());
    QTest::keyClicks(controls["LineEdit1"], "x");
    QCOMPARE(hub.values().value("LineEdit0").toString(), QString("a comment"));
    QVERIFY(hub.values().value("LineEdit1").toString().endsWith('x'));
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
    for (const QString side : {"Sell", "Buy", "Sell"}) {
        hub.setValue("Side", side);
        QVERIFY(buttons[side]->isChecked());
        QVERIFY(buy.isChecked() != sell.isChecked());
    }
    QTest::keyClick(&buy, Qt::Key_Space);
    market.click();
    QCOMPARE(hub.values()["Side"].toString(), QString("Buy"));
    QCOMPARE(hub.values()["Type"].toString(), QString("Market"));
    QVERIFY(limit.icon().isNull() && !market.icon().isNull());
}

void ControlsTest::anyText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("null") << QString();
    QTest::newRow("blanks") << " \t\r\n";
    QTest::newRow("zero characters") << QString(3, QChar(0));
    QTest::newRow("half surrogates") << QString(QChar(0xdc00)) + QChar(0xd800);
    QTest::newRow("beyond the plane") << QString::fromUtf8("\U0001f4c8\U0001d7d9");
    QTest::newRow("right to left") << QString(QChar(0x202e)) + QChar(0x0661) + QChar(0x200f);
    QTest::newRow("format letters") << "%1 &x <b>y</b> yyyy.MM.dd";
    QTest::newRow("huge number") << "99999999999999999999";
    QTest::newRow("no such date") << "2015.02.29 25:61:00.000";
    QTest::newRow("year 0") << "0000.01.01";
    QTest::newRow("the epoch") << "1970.01.01 00:00:00.000";
    QTest::newRow("long") << QString(100000, 'x');
}

// Whatever the program sets, by the hub or by hand: the control stays sound, says in Value
// what it shows, and takes the next good value.
void ControlsTest::anyText()
{
    QFETCH(QString, text);
    TestHost host;
    host.table("stocks").setRows({{0, "", ""}, {1, "Nasdaq", "XNAS"}});
    QWidget form;
    for (const QString &name : makers.keys()) {
        QWidget *const control = make(name, &form);
        const QMetaProperty value = control->metaObject()->userProperty();
        if (!QStringList({"Value", "StockId"}).contains(value.name()))
            continue;
        Properties hub;
        hub.connectAll(control);
        hub.setValue(value.name(), text);
        control->grab();
        const QString good = name == "DateEdit" ? "2015.03.01 00:00:00.000" : "1";
        hub.setValue(value.name(), good);
        QCOMPARE(userValue(control), good);
        QCOMPARE(hub.values().value(value.name()).toString(), good);
    }
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
