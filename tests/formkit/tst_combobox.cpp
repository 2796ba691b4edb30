#include <formkit/combobox.h>
#include <formkit/dateedit.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>

#include <support/stricttest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QStandardItemModel>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <memory>

using Make = QComboBox *(*)();
Q_DECLARE_METATYPE(Make)

namespace {

template <typename Box> QComboBox *make()
{
    return new Box;
}

} // namespace

class ComboBoxTest : public StrictTest
{
    Q_OBJECT

private slots:
    void newBox();
    void validator_data();
    void validator();
    void validatorOfADeadModel();
    void validatorGoesWithTheLineEdit();
    void completion();
    void popup();
    void manners_data();
    void manners();
};

void ComboBoxTest::newBox()
{
    ComboBox box;
    QVERIFY(box.isEditable());
    QCOMPARE(box.currentIndex(), -1);
    QCOMPARE(box.currentText(), QString());
    QCOMPARE(box.completer()->model(), box.model());
    QCOMPARE(box.comboBoxValidator()->model(), box.model());
    QCOMPARE(box.comboBoxValidator()->parent(), box.lineEdit());
    QVERIFY(!box.lineEdit()->validator());
}

void ComboBoxTest::validator_data()
{
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("input");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("fixed");
    const auto row = [](const char *name, const char *rows, const QString &input,
                        QValidator::State state, const QString &fixed) {
        const QStringList list = QString(rows).split(' ', Qt::SkipEmptyParts);
        QTest::newRow(name) << list << input << int(state) << fixed;
    };
    row("the first row that starts so decides", "ABC AB", "ab", QValidator::Intermediate, "ABC");
    row("whole row in another case", "ABC AB", "abc", QValidator::Acceptable, "ABC");
    row("the equal row first", "AB ABC", "ab", QValidator::Acceptable, "AB");
    row("no row", "ABC AB", "x", QValidator::Invalid, "x");
    row("longer than any row", "ABC AB", "abcd", QValidator::Invalid, "abcd");
    row("empty", "ABC AB", "", QValidator::Intermediate, "");
    row("empty over no rows", "", "", QValidator::Intermediate, "");
    row("no rows", "", "a", QValidator::Invalid, "a");
    row("not the first row", "Bx ABC", "a", QValidator::Intermediate, "ABC");
    row("Cyrillic", "\u041c\u043e\u0441\u043a\u0432\u0430", u8"\u043c\u043e",
        QValidator::Intermediate, u8"\u041c\u043e\u0441\u043a\u0432\u0430");
}

void ComboBoxTest::validator()
{
    QFETCH(QStringList, rows);
    QFETCH(QString, input);
    QFETCH(int, state);
    QFETCH(QString, fixed);
    ComboBox box;
    box.addItems(rows);
    QString text = input;
    int pos = 0;
    QCOMPARE(int(box.comboBoxValidator()->validate(text, pos)), state);
    QCOMPARE(text, input);
    box.comboBoxValidator()->fixup(text);
    QCOMPARE(text, fixed);
}

void ComboBoxTest::validatorOfADeadModel()
{
    ComboBoxValidator validator;
    auto model = std::make_unique<QStandardItemModel>(3, 1);
    validator.setModel(model.get());
    QString text = "a";
    int pos = 0;
    for (int i = 0; i < 2; ++i, model.reset()) {
        QCOMPARE(validator.validate(text, pos), QValidator::Invalid);
        validator.fixup(text);
        QCOMPARE(text, QString("a"));
    }
    QVERIFY(!validator.model());
    text.clear();
    QCOMPARE(validator.validate(text, pos), QValidator::Invalid);
}

void ComboBoxTest::validatorGoesWithTheLineEdit()
{
    ComboBox box;
    box.setEditable(false);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!box.comboBoxValidator());
    box.show();
    box.showPopup();
    box.hidePopup();
}

void ComboBoxTest::completion()
{
    ComboBox box;
    box.addItems({"Nasdaq", "Xetra"});
    box.setCurrentIndex(-1);
    QTest::keyClicks(&box, "xe");
    QCOMPARE(box.completer()->completionCount(), 1);
    QCOMPARE(box.completer()->currentCompletion(), QString("Xetra"));
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
    QVERIFY(!selection->hasSelection());
    QVERIFY(!box.view()->signalsBlocked());
    box.hidePopup();
    QCOMPARE(box.currentIndex(), -1);

    box.view()->blockSignals(true);
    box.showPopup();
    QVERIFY(box.view()->signalsBlocked());
    box.hidePopup();
}

void ComboBoxTest::manners_data()
{
    QTest::addColumn<Make>("makeBox");
    QTest::newRow("ComboBox") << Make(make<ComboBox>);
    QTest::newRow("DateEdit") << Make(make<DateEdit>);
    QTest::newRow("StockSelectorBox") << Make(make<StockSelectorBox>);
    QTest::newRow("StockSelectorBox_Code") << Make(make<StockSelectorBox_Code>);
}

void ComboBoxTest::manners()
{
    QFETCH(Make, makeBox);
    QWidget form;
    auto *const layout = new QVBoxLayout(&form);
    QComboBox *const box = makeBox();
    QLabel caption("B&uy && sell");
    QLineEdit before;
    caption.setBuddy(box);
    for (QWidget *widget : {static_cast<QWidget *>(&before), static_cast<QWidget *>(&caption),
                            static_cast<QWidget *>(box)})
        layout->addWidget(widget);
    const auto inner = [box] {
        return QAccessible::queryAccessibleInterface(box->lineEdit())->text(QAccessible::Name);
    };
    form.show();
    before.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    QCOMPARE(inner(), QString("Buy & sell"));
    caption.setText("Odd &");
    QTest::keyClick(&before, Qt::Key_Tab);
    QVERIFY(box->hasFocus());
    QCOMPARE(inner(), QString("Odd "));
    box->setAccessibleName("own name");

    // Enter on a text of no row.
    const int rows = box->count();
    QTest::keyClicks(box, "unheard");
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(box->count(), rows);
    QCOMPARE(box->findText("unheard"), -1);

    // The wheel turns the choice with the focus only.
    if (qobject_cast<ComboBox *>(box)) {
        box->setModel(new QStandardItemModel(3, 1, box));
        box->setCurrentIndex(0);
    }
    const int chosen = box->currentIndex();
    const auto turn = [box] {
        QWheelEvent event({1, 1}, box->mapToGlobal({1, 1}), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(box, &event);
        return event.isAccepted();
    };
    before.setFocus();
    QVERIFY(!turn());
    QCOMPARE(box->currentIndex(), chosen);
    QVERIFY(before.hasFocus());
    QVERIFY(!(box->focusPolicy() & ~Qt::StrongFocus));
    box->setFocus();
    QCOMPARE(inner(), QString("own name"));
    turn();
    QCOMPARE(box->currentIndex(), chosen < 0 ? -1 : chosen + 1);
}

QTEST_MAIN(ComboBoxTest)
#include "tst_combobox.moc"
