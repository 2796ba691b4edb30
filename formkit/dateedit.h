// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QComboBox>

#include <memory>

/// A date, typed in the short format of the system locale or picked from a calendar that
/// drops down (Down, Alt+Down, F4 or a click on the arrow open it).
///
/// While the text is no complete date it is red and there is no value; a text that never
/// became one is cleared when the field is left or Enter pressed. The value is the date in
/// system form ("2015.03.01 00:00:00.000"), empty for none. A time of day that the program sets
/// stays until the text changes. Setting an empty value while there is none leaves half-typed
/// text alone.
///
/// Under a format with a two-digit year, dates typed with two digits lie in 2000 to 2099; four
/// digits are read as they are. A date set by the program or picked from the calendar keeps its
/// century, also when its text comes back after edits, until the program sets another.
class FORMKIT_EXPORT DateEdit : public QComboBox
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "thisOnly")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    explicit DateEdit(QWidget *parent = nullptr);
    ~DateEdit() override;

    /// The date in system form, empty for none.
    QString getValue() const;
    /// Shows the date of a text in system form (see datetime). A text that is none empties the
    /// field. Unlike other controls it reports the change, in normal form, and also when only
    /// the form of the text was another. With a time of day, another date is reported twice:
    /// first the date alone, which is the value then, and after it what was set.
    void setValue(const QString &value);
    /// The same; without `updateText` the shown text is left alone.
    void setValue(const QString &value, bool updateText);

    /// Opens the calendar below the field, or above it where the screen ends, on the date of
    /// the field or on today.
    void showPopup() override;
    void hidePopup() override;

Q_SIGNALS:
    /// The date has changed, by whatever means; the argument is the value (but see setValue()).
    void changedValue(const QString &newValue);

protected:
    void keyPressEvent(QKeyEvent *event) override;

protected Q_SLOTS:
    /// Takes a date picked from the calendar and closes it.
    void calendarActivated(const QDate &date);
    /// Reads the text after every change of it.
    void onTextChanged();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
