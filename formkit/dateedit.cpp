// SPDX-License-Identifier: BSD-3-Clause
#include "dateedit.h"

#include "comboboxusability_p.h"
#include "datevalidator.h"

#include <QCalendarWidget>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>

namespace {

QString shown(const datetime &date)
{
    return date.toSystemString(true, QLocale::ShortFormat);
}

datetime typed(const QString &text)
{
    const datetime date = datetime::fromSystemString(text, true, QLocale::ShortFormat);
    return date.isNull() ? datetime::fromFullYearString(text, QLocale::ShortFormat) : date;
}

// Also accepts a year of four digits where the format has two.
class TypedDateValidator : public DateValidator
{
public:
    using DateValidator::DateValidator;

    State validate(QString &input, int &) const override
    {
        return input.isEmpty() || !typed(input).isNull() ? Acceptable : Intermediate;
    }
};

} // namespace

struct Q_DECL_HIDDEN DateEdit::Private
{
    explicit Private(DateEdit *edit) : q(edit) {}

    datetime readText() const;
    QPoint calendarPosition() const;

    DateEdit *const q;
    QCalendarWidget calendar; // a window of its own
    datetime value;
    datetime given; // the date that the program set or the calendar gave; null before
};

DateEdit::DateEdit(QWidget *parent) : QComboBox(parent), d(std::make_unique<Private>(this))
{
    setEditable(true);
    new ComboBoxUsability(this);
    lineEdit()->setValidator(new TypedDateValidator(this));
    lineEdit()->setAlignment(Qt::AlignHCenter);

    const QString pattern = QLocale::system().dateFormat(QLocale::ShortFormat);
    const QString longest = shown(datetime(QDate(2028, 12, 28)));
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(qMax(pattern.size(), longest.size()));
    lineEdit()->setPlaceholderText(pattern);
    lineEdit()->setToolTip(tr("Дата в формате: %1").arg(pattern));
    connect(lineEdit(), &QLineEdit::textChanged, this, &DateEdit::onTextChanged);

    d->calendar.setWindowFlags(Qt::Popup);
    d->calendar.setFirstDayOfWeek(QLocale::system().firstDayOfWeek());
    connect(&d->calendar, &QCalendarWidget::activated, this, &DateEdit::calendarActivated);
    connect(&d->calendar, &QCalendarWidget::clicked, this, &DateEdit::calendarActivated);
    d->calendar.hide();
}

DateEdit::~DateEdit() = default;

QString DateEdit::getValue() const
{
    return d->value.toString();
}

void DateEdit::setValue(const QString &value)
{
    setValue(value, true);
}

void DateEdit::setValue(const QString &value, bool updateText)
{
    const datetime date(value);
    const QString normal = date.toString();
    if (updateText)
        d->given = datetime(date.date());
    if (normal == value && date == d->value)
        return;
    d->value = date;
    if (updateText)
        setEditText(shown(date));
    Q_EMIT changedValue(normal);
}

// A text with a two-digit year does not tell the century. While it is the text of the given date
// it stands for that date.
datetime DateEdit::Private::readText() const
{
    const QString text = q->lineEdit()->text();
    return !given.isNull() && text == shown(given) ? given : typed(text);
}

void DateEdit::onTextChanged()
{
    setValue(d->readText().toString(), false);
    const bool isDate = lineEdit()->hasAcceptableInput();
    lineEdit()->setStyleSheet(isDate ? QString() : QStringLiteral("color: red"));
}

void DateEdit::showPopup()
{
    const datetime date = d->value.isNull() ? datetime::now() : d->value;
    d->calendar.setSelectedDate(date.date());
    d->calendar.adjustSize(); // a window may be wider than its contents ask for
    d->calendar.move(d->calendarPosition());
    d->calendar.show();
    d->calendar.setFocus(Qt::OtherFocusReason);
}

// Below the field, left edges in line, moved as far as it takes to stay on the screen. Above the
// field if there is no room below.
QPoint DateEdit::Private::calendarPosition() const
{
    const QRect field = q->rect();
    const QRect area = q->screen()->availableGeometry();
    const QSize size = calendar.size();
    QPoint place = q->mapToGlobal(field.bottomLeft());
    if (place.y() + size.height() > area.bottom() + 1)
        place.setY(q->mapToGlobal(field.topLeft()).y() - size.height());
    place.setX(qMin(place.x(), area.right() + 1 - size.width()));
    return {qMax(place.x(), area.left()), qMax(place.y(), area.top())};
}

void DateEdit::hidePopup()
{
    d->calendar.hide();
}

void DateEdit::calendarActivated(const QDate &date)
{
    if (date != d->value.date())
        setValue(datetime(date).toString(), true);
    hidePopup();
}

void DateEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Down)
        showPopup();
    QComboBox::keyPressEvent(event);
}
