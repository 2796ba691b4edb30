// SPDX-License-Identifier: BSD-3-Clause
#include "numberentry.h"

#include "numberrules_p.h"

#include <QDebug>

namespace {

NumberRules::Given read(const QString &text, const char *property)
{
    NumberRules::Given given{text, {}};
    if (decimal::canConvert(text, false))
        given.number = decimal(text);
    else if (!text.isEmpty())
        qWarning() << "NumberEntry:" << property << text << "is no number";
    return given;
}

NumberRules::Given readStep(const QString &text)
{
    NumberRules::Given step = read(text, "Step");
    if (step.number && *step.number <= decimal::zero)
        step.number.reset();
    while (step.number && step.number->scale() > 0 && step.number->word() % 10 == 0)
        step.number->setScale(short(step.number->scale() - 1));
    return step;
}

} // namespace

NumberEntry::NumberEntry(QWidget *parent) : QLineEdit(parent), d(std::make_unique<NumberRules>())
{
    d->changed = [] {};
}

NumberEntry::~NumberEntry() = default;

QString NumberEntry::getStep() const
{
    return d->step.text;
}

void NumberEntry::setStep(const QString &step)
{
    d->step = readStep(step);
    d->changed();
}

QString NumberEntry::getMinimum() const
{
    return d->minimum.text;
}

void NumberEntry::setMinimum(const QString &minimum)
{
    d->minimum = read(minimum, "Minimum");
    d->changed();
}

QString NumberEntry::getMaximum() const
{
    return d->maximum.text;
}

void NumberEntry::setMaximum(const QString &maximum)
{
    d->maximum = read(maximum, "Maximum");
    d->changed();
}

bool NumberEntry::wheelSteps() const
{
    return d->wheelSteps;
}

void NumberEntry::setWheelSteps(bool steps)
{
    d->wheelSteps = steps;
    d->changed();
}

bool NumberEntry::getMultipliers() const
{
    return d->multipliers;
}

void NumberEntry::setMultipliers(bool multiplies)
{
    d->multipliers = multiplies;
    d->changed();
}

bool NumberEntry::getSignToggle() const
{
    return d->signToggle;
}

void NumberEntry::setSignToggle(bool toggles)
{
    d->signToggle = toggles;
    d->changed();
}

QString NumberEntry::getPrefix() const
{
    return d->prefix;
}

void NumberEntry::setPrefix(const QString &prefix)
{
    d->prefix = prefix.trimmed();
    d->changed();
}

QString NumberEntry::getSuffix() const
{
    return d->suffix;
}

void NumberEntry::setSuffix(const QString &suffix)
{
    d->suffix = suffix.trimmed();
    d->changed();
}
