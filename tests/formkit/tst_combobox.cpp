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

class ComboBoxTest : public StrictTest
{
    Q_OBJECT

private slots:
    void newBox();
    void validator();
    void popup();
    void manners();
};

void ComboBoxTest::newBox()
{
    ComboBox box;
    QVERIFY(box.isEditable() && box.currentIndex() == -1 && box.currentText().isEmpty());
    QCOMPARE(box.comboBoxValidator()->model(), box.model());
    QVERIFY(!box.lineEdit()->validator());
    box.addItems({"Nasdaq", "Xetra"});
    box.setCurrentIndex(-1);
    QTest::keyClicks(&box, "xe");
    QCOMPARE(box.completer()->completionCount(), 1);
    QCOMPARE(box.completer()->currentCompletion(), QString("Xetra"));
}

void ComboBoxTest::validator()
{
    const auto No = QValidator::Invalid, Yet = QValidator::Intermediate,
               Yes = QValidator::Acceptable;
    // The rows, the text, the verdict and what fixup() makes of the text.
    const std::tuple<QString, QString, QValidator::State, QString> rows[] = {
        {"ABC AB", "ab", Yet, "ABC"}, // the first row that starts so decides
        {"ABC AB", "abc", Yes, "ABC"},
        {"AB ABC", "ab", Yes, "AB"},
        {"ABC AB", "abcd", No, "abcd"},
        {"ABC AB", "", Yet, ""},
        {"", "", Yet, ""},
        {"Bx ABC", "a", Yet, "ABC"},
        {"Москва", "мо", Yet, "Москва"},
    };
    for (const auto &[list, input, state, fixed] : rows) {
        ComboBox box;
        box.addItems(list.split(' ', Qt::SkipEmptyParts));
        QString text = input;
        int pos = 0;
        QCOMPARE(box.comboBoxValidator()->validate(text, pos), state);
        QCOMPARE(text, input);
        box.comboBoxValidator()->fixup(text);
        QCOMPARE(text, fixed);
    }

    ComboBoxValidator orphan;
    auto model = std::make_unique<QStandardItemModel>(3, 1);
    orphan.setModel(model.get());
    model.reset();
    QString text = "a";
    int pos = 0;
    QCOMPARE(orphan.validate(text, pos), No);
    orphan.fixup(text);
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
    box.hidePopup();
    QCOMPARE(box.currentIndex(), -1);
}

void ComboBoxTest::manners()
{
    const QVector<QComboBox *> boxes = {new ComboBox, new DateEdit, new StockSelectorBox,
                                        new StockSelectorBox_Code};
    for (QComboBox *const box : boxes) {
        QWidget form;
        QVBoxLayout layout(&form);
        QLabel caption("B&uy && sell");
        QLineEdit before;
        caption.setBuddy(box);
        for (QWidget *widget : QWidgetList{&before, &caption, box})
            layout.addWidget(widget);
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
        QVERIFY(!(box->focusPolicy() & ~Qt::StrongFocus));
        box->setFocus();
        QCOMPARE(inner(), QString("own name"));
        turn();
        QCOMPARE(box->currentIndex(), chosen < 0 ? -1 : chosen + 1);
    }
}

QTEST_MAIN(ComboBoxTest)
#include "tst_combobox.moc"
