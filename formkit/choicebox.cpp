// SPDX-License-Identifier: BSD-3-Clause
#include "choicebox.h"

#include "captions_p.h"
#include "comboboxusability_p.h"

#include <QDynamicPropertyChangeEvent>
#include <QKeyEvent>
#include <QKeySequence>

namespace {

const char *const choicesProperty = "choices";

enum Role { ValueRole = Qt::UserRole, KeyRole };

} // namespace

struct Q_DECL_HIDDEN ChoiceBox::Private
{
    QString value;
    int strangerRow = -1; // that of a value which is no choice
};

ChoiceBox::ChoiceBox(QWidget *parent) : QComboBox(parent), d(std::make_unique<Private>())
{
    new ComboBoxUsability(this);
    connect(this, QOverload<int>::of(&QComboBox::activated), this, &ChoiceBox::choose);
}

ChoiceBox::~ChoiceBox() = default;

void ChoiceBox::addChoice(const QString &value, const QString &text)
{
    if (d->strangerRow >= 0)
        removeItem(std::exchange(d->strangerRow, -1));
    int row = findData(value, ValueRole);
    if (row < 0) {
        row = count();
        addItem(QString(), value);
    }
    setItemText(row, Captions::spoken(text));
    const QKeySequence key = QKeySequence::mnemonic(text);
    setItemData(row, key.isEmpty() ? 0 : key[0] & ~int(Qt::KeyboardModifierMask), KeyRole);
    show(d->value);
}

void ChoiceBox::readChoices()
{
    const QStringList parts =
        property(choicesProperty).toString().split(QLatin1Char(';'), Qt::SkipEmptyParts);
    d->strangerRow = -1;
    clear();
    for (const QString &part : parts) {
        const QString value = part.section(QLatin1Char('='), 0, 0).trimmed();
        const bool hasText = part.contains(QLatin1Char('='));
        addChoice(value, hasText ? part.section(QLatin1Char('='), 1).trimmed() : value);
    }
    show(d->value);
}

QString ChoiceBox::getValue() const
{
    return d->value;
}

bool ChoiceBox::isKnown() const
{
    return d->value.isEmpty() || (currentIndex() >= 0 && currentIndex() != d->strangerRow);
}

void ChoiceBox::setValue(const QString &value)
{
    d->value = value;
    show(value);
}

void ChoiceBox::show(const QString &value)
{
    if (d->strangerRow >= 0 && itemData(d->strangerRow, ValueRole).toString() != value)
        removeItem(std::exchange(d->strangerRow, -1));
    if (findData(value, ValueRole) < 0 && !value.isEmpty()) {
        d->strangerRow = count();
        addItem(value, value);
    }
    setCurrentIndex(findData(value, ValueRole));
}

// The row of a value that is no choice stays, so that the user can go back to it.
void ChoiceBox::choose(int row)
{
    const QString value = itemData(row, ValueRole).toString();
    if (value == d->value)
        return;
    d->value = value;
    setCurrentIndex(row);
    Q_EMIT changedValue(value);
}

bool ChoiceBox::event(QEvent *event)
{
    if (event->type() == QEvent::DynamicPropertyChange &&
        static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() == choicesProperty)
        readChoices();
    return QComboBox::event(event);
}

void ChoiceBox::keyPressEvent(QKeyEvent *event)
{
    const int row = event->modifiers() == Qt::NoModifier ? findData(event->key(), KeyRole) : -1;
    if (row >= 0)
        choose(row);
    else
        QComboBox::keyPressEvent(event);
}
