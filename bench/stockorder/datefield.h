// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QCalendarWidget>
#include <QComboBox>
#include <QDate>

/// A date that is typed or picked from a calendar, and may be empty (which QDateEdit cannot be).
class DateField : public QComboBox
{
    Q_OBJECT

public:
    DateField();

    QString value() const;
    void setValue(const QString &value);

    void showPopup() override;
    void hidePopup() override { m_calendar.hide(); }

Q_SIGNALS:
    void changed();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QDate date() const;
    void show(const QDate &date);

    QCalendarWidget m_calendar;
};
