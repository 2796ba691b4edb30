// SPDX-License-Identifier: BSD-3-Clause
#include "controls.h"

#include "designedformselector.h"

#include <formkit/boardselectorbox.h>
#include <formkit/checkbox.h>
#include <formkit/choicebox.h>
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

#include <QCoreApplication>
#include <QMetaProperty>

#include <algorithm>
#include <cctype>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("FormkitDesigner", text);
}

const QMetaObject *qtClass(const QMetaObject *meta)
{
    while (meta->className()[0] != 'Q' || !isupper(meta->className()[1]))
        meta = meta->superClass();
    return meta;
}

QString xmlProperty(const QString &name, const QString &value, const QString &extra = {})
{
    return QStringLiteral("<property name=\"%1\"%3>%2</property>").arg(name, value, extra);
}

// As bytes, since Designer marks texts for translation.
QString presetText(const QByteArray &name)
{
    return xmlProperty(QString::fromLatin1(name), QStringLiteral("<cstring/>"),
                       QStringLiteral(" stdset=\"0\""));
}

QString caption(const QString &property, const QString &text)
{
    return xmlProperty(property, QStringLiteral("<string>%1</string>").arg(text));
}

template <typename Widget> QWidget *create(QWidget *parent)
{
    return new Widget(parent);
}

template <typename Widget> Control control(const QString &group, const QString &toolTip)
{
    Control made;
    made.meta = &Widget::staticMetaObject;
    made.create = create<Widget>;
    made.createDesigned = create<Widget>;
    made.header = QStringLiteral("<formkit/%1.h>").arg(made.name().toLower());
    made.group = group;
    made.toolTip = toolTip;
    made.whatsThis = toolTip;
    return made;
}

QVector<Control> makeControls()
{
    const QString values = QStringLiteral("formkit values");
    const QString selectors = QStringLiteral("formkit selectors");
    const QString containers = QStringLiteral("formkit containers");
    const DynamicProperty field{"field", tr("Name of the Value..."),
                                tr("The name under which the form's hub holds the value"),
                                DynamicProperty::Text};
    const DynamicProperty fields{"fields", tr("Names of the Properties..."),
                                 tr("Pairs of a name in the form's hub and a property of this "
                                    "control, such as \"Exchange=StockId Board=BoardId\""),
                                 DynamicProperty::Text};
    const DynamicProperty required{"required", tr("Required..."),
                                   tr("\"true\", or what is said when there is no value"),
                                   DynamicProperty::Words};
    const DynamicProperty rule{"rule", tr("Rules..."),
                               tr("One a line: range 1..100, range today.., step 0.05, oneOf A|B, "
                                  "matches [A-Z]{3}"),
                               DynamicProperty::Lines};
    const DynamicProperty message{"message", tr("Message of the Rules..."),
                                  tr("What is said in place of the texts of rules and limits"),
                                  DynamicProperty::Words};
    const DynamicProperty choices{"choices", tr("Choices..."),
                                  tr("Pairs of a value and its text: L=&Limit;M=&Market"),
                                  DynamicProperty::Words};
    const DynamicProperty value{"value", tr("Text of the Button..."),
                                tr("The text that the value is while this button is chosen"),
                                DynamicProperty::PresetText};
    const DynamicProperty checked{"value_checked", tr("Text when Checked..."),
                                  tr("The text that the value is while the box is checked"),
                                  DynamicProperty::PresetText};
    const DynamicProperty unchecked{"value_unchecked", tr("Text when Unchecked..."),
                                    tr("The text that the value is while the box is not checked"),
                                    DynamicProperty::PresetText};
    const DynamicProperty risk{"RiskAddress", tr("Only Partners with a Client Code"),
                               tr("Set on the box's parent"), DynamicProperty::ParentSwitch};

    const QSize lineSize(160, 28);
    const QSize boxSize(200, 28);
    QVector<Control> list;
    const auto add = [&](Control made, QSize size, const QVector<DynamicProperty> &dynamic) {
        made.firstSize = size;
        made.dynamicProperties = dynamic;
        const QByteArray first = dynamic.value(0).name;
        if (first == field.name)
            made.dynamicProperties += {required, rule, message};
        list << made;
        return &list.last();
    };

    add(control<Label>(values, tr("A caption that turns red while its field is in error")),
        {120, 28}, {})
        ->firstContent = caption("text", tr("Caption"));
    add(control<LineEdit>(values, tr("A line of text")), lineSize, {field});
    add(control<NumberEditor>(values, tr("A decimal number in the user's locale, checked and "
                                         "regrouped while it is typed")),
        lineSize, {field, fields});
    add(control<QuantityEditor>(values, tr("A whole number without a minus")), lineSize,
        {field, fields});
    add(control<DateEdit>(values, tr("A date, typed or picked from a calendar")), lineSize,
        {field});
    add(control<ChoiceBox>(values, tr("A list of fixed choices with a value each")), lineSize,
        {field, choices});
    add(control<CheckBox>(values, tr("A check box with a text for each of its states")), {140, 28},
        {field, checked, unchecked})
        ->firstContent = caption("text", tr("Check box"));
    add(control<RadioButton>(values, tr("One of several texts: buttons of one name are a choice")),
        {140, 28}, {field, value})
        ->firstContent = caption("text", tr("Choice"));
    add(control<PushButtonSend>(values, tr("A button that sends its text as the value")), {120, 32},
        {field, value})
        ->firstContent = caption("text", tr("Send"));

    add(control<StockSelectorBox>(selectors, tr("Selects an exchange")), boxSize, {field, fields});
    add(control<StockSelectorBox_Code>(selectors, tr("Selects an exchange by its code, for forms "
                                                     "that wire signals and slots")),
        boxSize, {});
    add(control<BoardSelectorBox>(selectors, tr("Selects a board of the chosen exchange")), boxSize,
        {field, fields});
    add(control<SecuritySelectorBox>(selectors, tr("Selects a security of the chosen board")),
        boxSize, {field, fields});
    add(control<PartnerSelectorBox>(selectors, tr("Selects a trading partner by its code")),
        boxSize, {field, fields, risk});
    add(control<ComboBox>(selectors, tr("A type-ahead list without a value of its own")), boxSize,
        {});

    Control *group =
        add(control<GroupBox>(containers, tr("A titled frame around controls")), {240, 160}, {});
    group->isContainer = true;
    group->firstContent = caption("title", tr("Group"));
    Control *selector =
        add(control<FormSelector>(containers, tr("Shows the page of the chosen board")), {320, 160},
            {boardsProperty(), fields});
    selector->isContainer = true;
    selector->createDesigned = create<DesignedFormSelector>;
    selector->addPageMethod = QStringLiteral("addPage");
    selector->whatsThis = tr("A container of pages, one of which is shown: that of the chosen "
                             "board. The property \"boards\" of a page holds its boards, as pairs "
                             "of exchange and board id: 1,7;2,3");
    selector->firstContent = QStringLiteral("<widget class=\"QWidget\" name=\"page\">%1</widget>")
                                 .arg(presetText(boardsProperty().name));
    return list;
}

} // namespace

QString Control::name() const
{
    return QString::fromLatin1(meta->className());
}

QString Control::baseName() const
{
    return QString::fromLatin1(qtClass(meta)->className());
}

QString Control::domXml() const
{
    QString objectName = name();
    objectName[0] = objectName.at(0).toLower();
    QString content = xmlProperty(
        "geometry",
        QStringLiteral("<rect><x>0</x><y>0</y><width>%1</width><height>%2</height></rect>")
            .arg(firstSize.width())
            .arg(firstSize.height()));
    QStringList texts;
    for (const DynamicProperty &property : dynamicProperties) {
        if (property.kind == DynamicProperty::PresetText)
            content += presetText(property.name);
        if (property.kind == DynamicProperty::Text || property.kind == DynamicProperty::Lines ||
            property.kind == DynamicProperty::PresetText)
            texts << QString::fromLatin1(property.name);
    }
    // Values of the hub are texts in system form, which must not be translated. A unit is for
    // people.
    const QList<QByteArray> units = {"Prefix", "Suffix"};
    for (int i = qtClass(meta)->propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (property.userType() == QMetaType::QString && !units.contains(property.name()))
            texts << QString::fromLatin1(property.name());
    }
    QString specifications;
    for (const QString &text : std::as_const(texts)) {
        specifications += QStringLiteral("<stringpropertyspecification name=\"%1\" notr=\"true\" "
                                         "type=\"singleline\"/>")
                              .arg(text);
    }
    const QString pages =
        addPageMethod.isEmpty()
            ? QString()
            : QStringLiteral("<addpagemethod>%1</addpagemethod>").arg(addPageMethod);
    return QStringLiteral("<ui language=\"c++\"><widget class=\"%1\" name=\"%2\">%3</widget>"
                          "<customwidgets><customwidget><class>%1</class><extends>%4</extends>%5"
                          "<propertyspecifications>%6</propertyspecifications>"
                          "</customwidget></customwidgets></ui>")
        .arg(name(), objectName, content + firstContent, baseName(), pages, specifications);
}

const QVector<Control> &controls()
{
    static const QVector<Control> list = makeControls();
    return list;
}

const DynamicProperty &boardsProperty()
{
    static const DynamicProperty property{
        "boards", tr("Boards of the Page..."),
        tr("The boards that the page serves, as pairs of exchange and board id: 1,7;2,3"),
        DynamicProperty::PageText};
    return property;
}

const Control *controlOf(const QObject *object)
{
    const auto &list = controls();
    for (const QMetaObject *meta = object->metaObject(); meta; meta = meta->superClass()) {
        const auto found = std::find_if(list.begin(), list.end(), [meta](const Control &control) {
            return control.meta == meta;
        });
        if (found != list.end())
            return &*found;
    }
    return nullptr;
}
