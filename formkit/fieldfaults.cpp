// SPDX-License-Identifier: BSD-3-Clause
#include "fieldfaults_p.h"

#include "choicebox.h"
#include "combobox.h"
#include "dateedit.h"
#include "formrules.h"
#include "numbereditor.h"

#include <hostapi/datetime.h>

#include <QLineEdit>

namespace {

QString noNumber(const NumberEditor *editor)
{
    const bool isNumber = decimal::canConvert(editor->getValue(), false);
    if (editor->text().isEmpty() || isNumber)
        return {};
    return FormRules::tr("'%1' is no number, or could be two; enter it again").arg(editor->text());
}

QString noDate(const DateEdit *edit)
{
    const QString text = edit->lineEdit()->text();
    if (text.isEmpty() || !edit->getValue().isEmpty())
        return {};
    return FormRules::tr("'%1' is no date; enter it as %2")
        .arg(text, edit->lineEdit()->placeholderText());
}

} // namespace

QString FieldFaults::ofText(const QWidget *control)
{
    if (const auto *number = qobject_cast<const NumberEditor *>(control))
        return noNumber(number);
    if (const auto *date = qobject_cast<const DateEdit *>(control))
        return noDate(date);
    if (const auto *choice = qobject_cast<const ChoiceBox *>(control))
        return choice->isKnown() ? QString()
                                 : FormRules::tr("'%1' is no choice").arg(choice->getValue());
    const auto *box = qobject_cast<const ComboBox *>(control);
    return box ? box->fault() : QString();
}

QString FieldFaults::ofLimits(const QWidget *control)
{
    const auto *editor = qobject_cast<const NumberEditor *>(control);
    if (!editor || editor->isValid() || !decimal::canConvert(editor->getValue(), false))
        return {};
    const decimal number = editor->getDecimal();
    const QString least = editor->getMinimum();
    const QString most = editor->getMaximum();
    if (decimal::canConvert(least, false) && number < decimal(least))
        return FormRules::tr("At least %1").arg(editor->toText(least));
    if (decimal::canConvert(most, false) && number > decimal(most))
        return FormRules::tr("At most %1").arg(editor->toText(most));
    return FormRules::tr("Not zero");
}

QString FieldFaults::shown(const QString &value, const QWidget *control)
{
    if (const auto *editor = qobject_cast<const NumberEditor *>(control))
        return editor->toText(value);
    const datetime date(value);
    return date.isNull() ? value : date.toSystemString(true, QLocale::ShortFormat);
}
