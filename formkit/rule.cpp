// SPDX-License-Identifier: BSD-3-Clause
#include "rule_p.h"

#include "fieldfaults_p.h"
#include "formrules.h"

#include <hostapi/datetime.h>
#include <hostapi/decimal.h>

#include <QDebug>
#include <QRegularExpression>
#include <QStringList>

#include <optional>

namespace {

bool isNumber(const QString &text)
{
    return decimal::canConvert(text, false);
}

// "today" and "today+30" as dates; other texts as they are.
QString limitOf(const QString &text)
{
    if (!text.startsWith(QLatin1String("today")))
        return text;
    static const QRegularExpression Today(QStringLiteral("^today([+-]\\d+)?$"));
    const QRegularExpressionMatch match = Today.match(text);
    if (!match.hasMatch())
        return text;
    return datetime(datetime::now().date().addDays(match.captured(1).toInt())).toString();
}

// Less than, equal to or greater than 0; none for what cannot be compared.
std::optional<int> compared(const QString &one, const QString &other)
{
    if (one.isEmpty() || other.isEmpty() || isNumber(one) != isNumber(other))
        return {};
    if (isNumber(one))
        return decimal(one).compare(decimal(other));
    const datetime a(one);
    const datetime b(other);
    if (a.isNull() || b.isNull())
        return {};
    return a < b ? -1 : int(b < a);
}

bool isMultiple(const QString &value, const QString &step)
{
    decimal number(value);
    decimal unit(step);
    const short scale = qMax(number.scale(), unit.scale());
    number.setScale(scale);
    unit.setScale(scale);
    return unit.word() == 0 || number.word() % unit.word() == 0;
}

Rule readRange(const QString &limits)
{
    const QStringList both = limits.split(QLatin1String(".."));
    return both.size() == 2 ? Rules::range(both[0].trimmed(), both[1].trimmed()) : Rule();
}

Rule readOne(const QString &word, const QString &rest)
{
    if (word == QLatin1String("range"))
        return readRange(rest);
    if (word == QLatin1String("step") && isNumber(rest))
        return Rules::step(rest);
    if (word == QLatin1String("oneOf"))
        return Rules::oneOf(rest.split(QLatin1Char('|')));
    if (word == QLatin1String("matches") && QRegularExpression(rest).isValid())
        return Rules::matches(rest);
    return {};
}

} // namespace

Rule Rules::range(const QString &least, const QString &most)
{
    return [least, most](const QString &value, const QWidget *control) {
        const QString from = limitOf(least);
        const QString to = limitOf(most);
        const auto isRight = [&](const QString &lower, const QString &upper) {
            return compared(lower, upper).value_or(0) <= 0;
        };
        if (isRight(from, value) && isRight(value, to))
            return QString();
        const QString shownFrom = FieldFaults::shown(from, control);
        const QString shownTo = FieldFaults::shown(to, control);
        if (to.isEmpty())
            return FormRules::tr("At least %1").arg(shownFrom);
        return from.isEmpty() ? FormRules::tr("At most %1").arg(shownTo)
                              : FormRules::tr("Between %1 and %2").arg(shownFrom, shownTo);
    };
}

Rule Rules::step(const QString &step)
{
    return [step](const QString &value, const QWidget *control) {
        if (!isNumber(value))
            return QString();
        try {
            if (isMultiple(value, step))
                return QString();
        } catch (...) {
            // Too long for a common scale, so that its last digit is below the step's.
        }
        return FormRules::tr("In steps of %1").arg(FieldFaults::shown(step, control));
    };
}

Rule Rules::oneOf(const QStringList &values)
{
    return [values](const QString &value, const QWidget *) {
        return values.contains(value)
                   ? QString()
                   : FormRules::tr("One of: %1").arg(values.join(QLatin1String(", ")));
    };
}

Rule Rules::matches(const QString &pattern)
{
    const QRegularExpression whole(QRegularExpression::anchoredPattern(pattern));
    return [whole](const QString &value, const QWidget *) {
        return whole.match(value).hasMatch() ? QString()
                                             : FormRules::tr("Not in the form that is expected");
    };
}

QVector<Rule> Rules::read(const QString &text)
{
    QVector<Rule> rules;
    const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QString trimmed = line.trimmed();
        const QString rest = trimmed.section(QLatin1Char(' '), 1);
        const Rule rule = readOne(trimmed.section(QLatin1Char(' '), 0, 0), rest);
        if (rule)
            rules << rule;
        else
            qWarning() << "FormRules: no rule:" << line;
    }
    return rules;
}
