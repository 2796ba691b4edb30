// SPDX-License-Identifier: BSD-3-Clause
#include "summator.h"

#include <hostapi/decimal.h>
#include <hostapi/exception.h>

Summator::Summator(QObject *parent) : QObject(parent) {}

void Summator::setSummand(const QString &text)
{
    if (text == m_summand)
        return;
    m_summand = text;
    update();
}

void Summator::setAddendum(const QString &text)
{
    if (text == m_addendum)
        return;
    m_addendum = text;
    update();
}

void Summator::update()
{
    const QString value = sum();
    if (value == m_value)
        return;
    m_value = value;
    Q_EMIT changedValue(value);
}

void Summator::report()
{
    Q_EMIT changedValue(QString(m_value));
}

QString Summator::sum() const
{
    if (!decimal::canConvert(m_addendum, false) || !decimal::canConvert(m_summand, false))
        return m_summand;
    try {
        return (decimal(m_summand) + decimal(m_addendum)).toString();
    } catch (const Exception &) {
        return m_summand;
    }
}
