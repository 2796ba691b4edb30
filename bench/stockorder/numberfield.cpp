// SPDX-License-Identifier: BSD-3-Clause
#include "numberfield.h"

#include <QKeyEvent>

namespace {

constexpr int MaxDigits = 15;

} // namespace

QString GroupingValidator::shown(QString number) const
{
    int point = number.indexOf('.');
    if (point >= 0)
        number.replace(point, 1, locale().decimalPoint());
    else
        point = number.size();
    for (int place = point - 3; place > 0; place -= 3)
        number.insert(place, locale().groupSeparator());
    return number;
}

QString GroupingValidator::number(QString text) const
{
    text.remove(locale().groupSeparator()).replace(QString(locale().decimalPoint()), ".");
    if (text.startsWith('.'))
        text.prepend('0');
    if (text.endsWith('.'))
        text.chop(1);
    return text;
}

QValidator::State GroupingValidator::validate(QString &input, int &pos) const
{
    const QString group(locale().groupSeparator());
    int digitsBefore = input.left(pos).remove(group).size();
    QString plain = input;
    plain.remove(group);
    while (plain.size() > 1 && plain.at(0) == '0' && plain.at(1).isDigit()) {
        plain.remove(0, 1);
        digitsBefore = qMax(0, digitsBefore - 1);
    }
    int nowhere = 0;
    const State state = QDoubleValidator::validate(plain, nowhere);
    const int points = plain.count(locale().decimalPoint());
    const int digits = plain.size() - points;
    if (state == Invalid || digits > MaxDigits || (points > 0 && decimals() == 0) ||
        plain.contains('e', Qt::CaseInsensitive))
        return Invalid;
    input = shown(plain.replace(QString(locale().decimalPoint()), "."));
    for (pos = 0; digitsBefore > 0 && pos < input.size(); ++pos) {
        if (input.at(pos) != group.at(0))
            --digitsBefore;
    }
    return state;
}

NumberField::NumberField(int decimals) : m_validator(new GroupingValidator(this))
{
    m_validator->setBottom(0);
    m_validator->setDecimals(decimals);
    m_validator->setNotation(QDoubleValidator::StandardNotation);
    setValidator(m_validator);
    setAlignment(Qt::AlignRight);
}

void NumberField::setValue(const QString &value)
{
    if (value != this->value())
        setText(m_validator->shown(value));
}

void NumberField::keyPressEvent(QKeyEvent *event)
{
    const bool atSeparator =
        text().mid(cursorPosition(), 1) == m_validator->locale().groupSeparator();
    if (event->matches(QKeySequence::Delete) && !hasSelectedText() && atSeparator)
        cursorForward(false);
    else
        QLineEdit::keyPressEvent(event);
}
