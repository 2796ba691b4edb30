// SPDX-License-Identifier: BSD-3-Clause
#include "securitysteps.h"

#include "numberentry.h"

#include <hostapi/stepsource.h>

#include <QPointer>
#include <QVector>

struct Q_DECL_HIDDEN SecuritySteps::Private
{
    struct Field
    {
        QPointer<NumberEntry> field;
        QString ownStep;
        decimal TradingSteps::*step;
    };

    void add(NumberEntry *field, decimal TradingSteps::*step);
    void set(QString *id, const QString &newId);
    void lookUp();

    QVector<Field> fields;
    QString stockId;
    QString boardId;
    QString securityId;
};

SecuritySteps::SecuritySteps(QObject *parent) : QObject(parent), d(std::make_unique<Private>()) {}

SecuritySteps::~SecuritySteps() = default;

void SecuritySteps::addPrice(NumberEntry *field)
{
    d->add(field, &TradingSteps::price);
}

void SecuritySteps::addQuantity(NumberEntry *field)
{
    d->add(field, &TradingSteps::lot);
}

void SecuritySteps::Private::add(NumberEntry *field, decimal TradingSteps::*step)
{
    if (!field)
        return;
    fields << Field{field, field->getStep(), step};
    lookUp();
}

void SecuritySteps::Private::set(QString *id, const QString &newId)
{
    *id = newId;
    lookUp();
}

void SecuritySteps::Private::lookUp()
{
    const qint64 security = securityId.toLongLong();
    TradingSteps steps;
    if (security != 0)
        steps = StepSource::i()->stepsOf(stockId.toInt(), boardId.toInt(), security);
    for (const Field &each : std::as_const(fields)) {
        const decimal step = steps.*each.step;
        if (each.field)
            each.field->setStep(step > decimal::zero ? step.toString() : each.ownStep);
    }
}

QString SecuritySteps::getStockId() const
{
    return d->stockId;
}

void SecuritySteps::setStockId(const QString &id)
{
    d->set(&d->stockId, id);
}

QString SecuritySteps::getBoardId() const
{
    return d->boardId;
}

void SecuritySteps::setBoardId(const QString &id)
{
    d->set(&d->boardId, id);
}

QString SecuritySteps::getSecurityId() const
{
    return d->securityId;
}

void SecuritySteps::setSecurityId(const QString &id)
{
    d->set(&d->securityId, id);
}
