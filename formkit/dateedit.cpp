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

// Knows years of four digits, too.
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

DateEdit::DateEdit(QWidget *parent) : QComboBox(parent)
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

    m_calendar = std::make_unique<QCalendarWidget>();
    m_calendar->setWindowFlags(Qt::Popup);
    m_calendar->setFirstDayOfWeek(QLocale::system().firstDayOfWeek());
    connect(m_calendar.get(), &QCalendarWidget::activated, this, &DateEdit::calendarActivated);
    connect(m_calendar.get(), &QCalendarWidget::clicked, this, &DateEdit::calendarActivated);
    m_calendar->hide();
}

DateEdit::~DateEdit() = default;

void DateEdit::setValue(const QString &value)
{
    setValue(value, true);
}

void DateEdit::setValue(const QString &value, bool updateText)
{
    const datetime date(value);
    const QString normal = date.toString();
    if (updateText)
        m_given = datetime(date.date());
    if (normal == value && date == m_value)
        return;
    m_value = date;
    if (updateText)
        setEditText(shown(date));
    Q_EMIT changedValue(normal);
}

// The century of a two-digit year is in the date alone: a text that shows the given date means
// that date.
datetime DateEdit::readText() const
{
    const QString text = lineEdit()->text();
    if (!m_given.isNull() && text == shown(m_given))
        return m_given;
    return typed(text);
}

void DateEdit::onTextChanged()
{
    setValue(readText().toString(), false);
    const bool isDate = lineEdit()->hasAcceptableInput();
    lineEdit()->setStyleSheet(isDate ? QString() : QStringLiteral("color: red"));
}

void DateEdit::showPopup()
{
    const datetime date = m_value.isNull() ? datetime::now() : m_value;
    m_calendar->setSelectedDate(date.date());
    m_calendar->adjustSize(); // a window may be wider than its contents ask for
    m_calendar->move(calendarPosition());
    m_calendar->show();
    m_calendar->setFocus(Qt::OtherFocusReason);
}

// Below the field's left edge, moved as far as it takes to stay on the screen; above the
// field where there is no room below.
QPoint DateEdit::calendarPosition() const
{
    const QPoint below = mapToGlobal(rect().bottomLeft());
    const QRect area = screen()->availableGeometry();
    const QSize size = m_calendar->size();
    QPoint place = below;
    if (below.y() + size.height() > area.bottom() + 1)
        place.setY(mapToGlobal(rect().topLeft()).y() - size.height());
    place.setX(qMin(place.x(), area.right() + 1 - size.width()));
    return {qMax(place.x(), area.left()), qMax(place.y(), area.top())};
}

void DateEdit::hidePopup()
{
    m_calendar->hide();
}

void DateEdit::calendarActivated(const QDate &date)
{
    if (date != m_value.date())
        setValue(datetime(date).toString(), true);
    hidePopup();
}

void DateEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Down)
        showPopup();
    QComboBox::keyPressEvent(event);
}
