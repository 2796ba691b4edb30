// SPDX-License-Identifier: BSD-3-Clause
// Shows every control with an example value, or writes the page about them: a picture of each
// and the properties that its class adds to Qt's.
//
//     formkit-gallery reference.sqlite                 a window
//     formkit-gallery reference.sqlite gallery.md images
//     formkit-gallery --grab 0x1400007 dialog.png      a picture of another program's window

#include <embeddedhost/embeddedhost.h>
#include <formkit/boardselectorbox.h>
#include <formkit/checkbox.h>
#include <formkit/dateedit.h>
#include <formkit/groupbox.h>
#include <formkit/label.h>
#include <formkit/lineedit.h>
#include <formkit/partnerselectorbox.h>
#include <formkit/pushbuttonsend.h>
#include <formkit/quantityeditor.h>
#include <formkit/radiobutton.h>
#include <formkit/securityselectorbox.h>
#include <formkit/stockselectorbox.h>
#include <formkit/stockselectorbox_code.h>

#include <QApplication>
#include <QFile>
#include <QFormLayout>
#include <QMetaProperty>
#include <QPixmap>
#include <QScreen>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

struct Exhibit
{
    QWidget *control; // the one who asked owns it
    const char *use;
};

template <typename Control>
Control *make(std::initializer_list<std::pair<const char *, const char *>> values)
{
    auto *control = new Control;
    for (const auto &value : values)
        control->setProperty(value.first, value.second);
    return control;
}

std::vector<Exhibit> exhibits()
{
    auto *red = new Label("Price");
    red->setError("The price must be above zero");
    auto *send = make<PushButtonSend>({{"value", "place"}, {"text", "Place"}});
    send->setValue("place");
    auto *code = new StockSelectorBox_Code;
    code->populate();
    auto *box = new GroupBox;
    box->setTitle("Details");
    box->setMinimumSize(160, 60);
    return {
        {make<StockSelectorBox>({{"StockId", "2"}}), "An exchange, by its name."},
        {code, "An exchange, by its code."},
        {make<BoardSelectorBox>({{"StockId", "2"}, {"BoardId", "1"}}), "A board of an exchange."},
        {make<SecuritySelectorBox>({{"StockId", "1"}, {"BoardId", "1"}, {"SecurityId", "100012"}}),
         "A security of a board."},
        {make<PartnerSelectorBox>({{"Partner", "MB01037"}}), "A trading partner, by its code."},
        {make<NumberEditor>({{"Value", "1234567.25"}, {"Step", "0.05"}, {"Suffix", "USD"}}),
         "A price or any other decimal number."},
        {make<QuantityEditor>({{"Value", "150000"}, {"Step", "100"}, {"Multipliers", "true"}}),
         "A whole quantity."},
        {make<DateEdit>({{"Value", "2035.12.31"}}), "A date, typed or picked from a calendar."},
        {make<LineEdit>({{"Value", "as agreed"}}), "A line of text."},
        {make<CheckBox>({{"value_checked", "Y"},
                         {"value_unchecked", "N"},
                         {"Value", "Y"},
                         {"text", "Hidden"}}),
         "A choice of two texts: the dynamic properties `value_checked` and `value_unchecked`."},
        {make<RadioButton>({{"value", "B"}, {"Value", "B"}, {"text", "Buy"}}),
         "One text of several: the dynamic property `value`."},
        {send, "A button that sends one text of several: the dynamic property `value`."},
        {red, "A caption that turns red and gives the reason as its tool tip."},
        {box, "A frame around other controls."},
    };
}

const char *className(const QWidget *control)
{
    return control->metaObject()->className();
}

// The properties that formkit's classes add, those of the base first.
QString propertyTable(const QMetaObject *type)
{
    const QMetaObject *qt = type;
    while (!QByteArray(qt->className()).startsWith('Q') || qt == &QuantityEditor::staticMetaObject)
        qt = qt->superClass();
    QString table;
    for (int i = qt->propertyCount(); i < type->propertyCount(); ++i) {
        const QMetaProperty property = type->property(i);
        QStringList facts;
        if (!property.isWritable())
            facts << "read only";
        if (property.isUser())
            facts << "the one that `field` names";
        if (property.enclosingMetaObject() == &NumberEntry::staticMetaObject)
            facts << "a setting: bound where `fields` names it";
        table += QString("| `%1` | %2 | %3 | %4 |\n")
                     .arg(property.name(), property.typeName(),
                          property.hasNotifySignal()
                              ? '`' + QString(property.notifySignal().name()) + '`'
                              : QString("-"),
                          facts.join(", "));
    }
    if (table.isEmpty())
        return "It has no properties beyond Qt's.\n";
    return "| property | type | reports with | |\n|---|---|---|---|\n" + table;
}

int writePage(const QString &page, const QString &folder)
{
    QFile file(page);
    if (!file.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(page), qPrintable(file.errorString()));
        return 1;
    }
    file.write("# The controls\n\n"
               "What a form is made of. The pictures and tables are made by `scripts/screenshots` "
               "from the\nclasses themselves; the headers say the rest.\n\n"
               "`Value`, or whichever property is marked so, is what the dynamic property `field` "
               "binds to a\nname of the hub; `fields` binds any of them "
               "(`A=StockId B=BoardId`).\n\n"
               "Without a picture: [Summator](../formkit/summator.h) adds two fields, and "
               "[FormSelector](../formkit/formselector.h)\nshows the sub-form of a board.\n");
    for (const Exhibit &exhibit : exhibits()) {
        const std::unique_ptr<QWidget> control(exhibit.control);
        const QString name = className(control.get());
        const QString picture = QString("%1/control-%2.png").arg(folder, name.toLower());
        control->resize(qBound(120, control->sizeHint().width(), 280),
                        control->sizeHint().height());
        if (!control->grab().save(picture)) {
            std::fprintf(stderr, "%s: cannot write the picture\n", qPrintable(picture));
            return 1;
        }
        file.write(
            QString("\n## %1\n\n%2 [Header](../formkit/%3.h).\n\n![%1](images/control-%3.png)"
                    "\n\n%4")
                .arg(name, exhibit.use, name.toLower(), propertyTable(control->metaObject()))
                .toUtf8());
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4 && arguments.at(1) == "--grab") {
        const WId window = arguments.at(2).toULongLong(nullptr, 0);
        return QApplication::primaryScreen()->grabWindow(window).save(arguments.at(3)) ? 0 : 1;
    }
    EmbeddedHost host;
    if (arguments.size() != 2 && arguments.size() != 4) {
        std::fprintf(stderr, "usage: formkit-gallery database [page.md picture-folder]\n");
        return 1;
    }
    if (!host.loadNow(arguments.at(1))) {
        std::fprintf(stderr, "%s\n", qPrintable(host.errorText()));
        return 1;
    }
    ICore::install(&host);
    if (arguments.size() == 4)
        return writePage(arguments.at(2), arguments.at(3));
    QWidget window;
    auto *layout = new QFormLayout(&window);
    for (const Exhibit &exhibit : exhibits())
        layout->addRow(className(exhibit.control), exhibit.control);
    window.show();
    return QApplication::exec();
}
