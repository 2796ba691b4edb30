// SPDX-License-Identifier: BSD-3-Clause
#include "datevalidator.h"

#include <hostapi/datetime.h>

DateValidator::DateValidator(QObject *parent) : QValidator(parent) {}

QValidator::State DateValidator::validate(QString &input, int &) const
{
    if (input.isEmpty())
        return Acceptable;
    const datetime date = datetime::fromSystemString(input, true, QLocale::ShortFormat);
    return date.isNull() ? Intermediate : Acceptable;
}

void DateValidator::fixup(QString &input) const
{
    int pos = 0;
    if (validate(input, pos) != Acceptable)
        input = QString();
}
