// SPDX-License-Identifier: BSD-3-Clause
#include "datefield.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>

namespace {

const char SystemForm[] = "yyyy.MM.dd";
const char Midnight[] = " 00:00:00.000";

} // namespace

DateField::DateField()
{
    setEditable(true);
    setFocusPolicy(Qt::StrongFocus);
    m_calendar.setWindowFlags(Qt::Popup);
    for (const auto chosen : {&QCalendarWidget::activated, &QCalendarWidget::clicked}) {
        connect(&m_calendar, chosen, this, [this](const QDate &date) {
            show(date);
            hidePopup();
        });
    }
    connect(lineEdit(), &QLineEdit::textChanged, this, [this](const QString &text) {
        const bool isWrong = !text.isEmpty() && !date().isValid();
        lineEdit()->setStyleSheet(isWrong ? "color: red" : "");
        Q_EMIT changed();
    });
    connect(lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (!date().isValid())
            lineEdit()->clear();
    });
}

QString DateField::value() const
{
    return date().isValid() ? date().toString(SystemForm) + Midnight : QString();
}

void DateField::setValue(const QString &value)
{
    if (value != this->value())
        show(QDate::fromString(value.left(10), SystemForm));
}

void DateField::showPopup()
{
    m_calendar.setSelectedDate(date().isValid() ? date() : QDate::currentDate());
    m_calendar.move(mapToGlobal(rect().bottomLeft()));
    m_calendar.show();
    m_calendar.setFocus();
}

void DateField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Down)
        showPopup();
    QComboBox::keyPressEvent(event);
}

QDate DateField::date() const
{
    const QLocale locale = QLocale::system();
    const QDate date = locale.toDate(currentText(), QLocale::ShortFormat);
    const bool isShort = !locale.dateFormat(QLocale::ShortFormat).contains("yyyy");
    return isShort && date.year() < 2000 ? date.addYears(100) : date;
}

void DateField::show(const QDate &date)
{
    lineEdit()->setText(QLocale::system().toString(date, QLocale::ShortFormat));
}
