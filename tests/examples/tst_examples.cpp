// SPDX-License-Identifier: BSD-3-Clause
#include "support/datafile.h"
#include "support/keys.h"
#include "support/stricttest.h"

#include "formkitorder.h"
#include "stockorder.h"
#include "terminalhost.h"

#include <QLabel>

namespace {

const std::vector<Security> securities{
    {1, 1, 10, "THB", "Thistle", 1}, {1, 1, 11, "TAM", "Tamar", 1}, {1, 2, 12, "RAV", "Raven", 1},
    {2, 1, 20, "ELD", "Elder", 1},   {2, 1, 21, "EL2", "elder", 1}, {2, 1, 22, "SHU", "Shut", 9}};

const char fieldNames[] =
    "StockId BoardId SecurityId Price Quantity GoodTill Side Anonymous Hidden "
    "Partner Comment Sum";

// The text and caret of the field that has the focus.
QString shownText()
{
    const auto *box = qobject_cast<QComboBox *>(QApplication::focusWidget());
    const auto *edit =
        box ? box->lineEdit() : qobject_cast<QLineEdit *>(QApplication::focusWidget());
    if (!edit)
        return {};
    return QString("%1|%2").arg(edit->text()).arg(edit->cursorPosition()) +
           (edit->styleSheet().contains("color") ? " red" : "");
}

// What is seen after each step of a story, which begins with its name; with "fault" in it where the
// step expects something else.
template <typename Form> QStringList play(const QStringList &story)
{
    TerminalHost host({{1, "XNYS", "New York"}, {2, "XNAS", "Nasdaq"}},
                      {{1, 1, "XNYS", "NYSE"}, {1, 2, "ARCX", "Arca"}, {2, 1, "XNGS", "Select"}});
    host.setSecurities(securities);
    host.setPartners({{"MB1", "C1", "Alder"}, {"MB2", "", "Calder"}});
    host.setSessions({{1, 1}, {2, 1}});
    ICore::install(&host);
    Form form;
    form.show();
    QApplication::setActiveWindow(&form);

    QStringList seen;
    for (const QString &step : story) {
        const QString verb = step.section(' ', 0, 0);
        const QString what = step.section(' ', 1);
        Values values;
        for (const QString &part : what.split(';'))
            values.insert(part.section('=', 0, 0), part.section('=', 1));
        for (const QString &key : verb == "press" ? what.split(' ') : QStringList())
            keys::press(QApplication::focusWidget(), key);
        if (verb == "type")
            keys::type(QApplication::focusWidget(), what);
        if (verb == "fill")
            form.fill(values);
        if (verb == "check")
            form.check();
        QString red;
        for (const QLabel *label : form.template findChildren<QLabel *>()) {
            const QString caption = label->text().remove('&');
            if (verb == "go" && caption == what)
                label->buddy()->setFocus(Qt::TabFocusReason);
            red += label->styleSheet().contains("red") ? caption : QString();
        }
        QCoreApplication::processEvents();
        QString state = shownText() + " / " + red;
        if ((verb == "shows" && shownText() != what) || (verb == "red" && red != what))
            state += " fault";
        const QVariantMap all = form.values();
        for (const QString &name : QString(fieldNames).split(' ')) {
            state += ' ' + all.value(name).toString();
            if (verb == "is" && values.value(name, all.value(name)) != all.value(name))
                state += " fault";
        }
        seen << step + " -> " + state;
    }
    ICore::install(nullptr);
    return seen;
}

} // namespace

// The example host, and the order form that is written twice over it.
class ExamplesTest : public StrictTest
{
    Q_OBJECT

private Q_SLOTS:
    void orders()
    {
        for (const DataRow &story : rowsOf("order.txt")) {
            const QStringList formkit = play<FormkitOrder>(story);
            QVERIFY2(!formkit.join(' ').contains("fault"), qPrintable(formkit.join('\n')));
            QCOMPARE(play<StockOrder>(story), formkit);
        }
    }
};

QTEST_MAIN(ExamplesTest)
#include "tst_examples.moc"
