// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>
#include <hostapi/datetime.h>

#include <QComboBox>

#include <memory>

/// A date, typed in the short format of the system locale or picked from a calendar that drops down
/// (on Down, Alt+Down, F4 or a click on the arrow).
///
/// - The value is the date in system form ("2015.03.01 00:00:00.000"), empty for none. A time of
///   day that the program sets stays until the text changes.
/// - While the text is not a complete date it is red, and there is no value. Such a text is cleared
///   when the field is left or Enter is pressed. An empty value that the program sets while there
///   is none leaves it alone.
/// - If the format has a two-digit year, a year typed with two digits lies in 2000 to 2099, and
///   four digits are read as they are. A date that the program sets or the calendar gives keeps its
///   century, also when edits lead back to its text, until the next such date.
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
    /// Shows the date of a text in system form (see datetime); any other text empties the field.
    /// Unlike other controls this one reports the change, in normal form, also if only the form of
    /// the text was another. A date with a time of day is reported twice: first the date alone,
    /// which is the value then, and after it the date and time that were set.
    void setValue(const QString &value);
    /// The same; without `updateText` the shown text stays.
    void setValue(const QString &value, bool updateText);

    /// Opens the calendar below the field, or above it if there is no room, at the date of the
    /// field or today.
    void showPopup() override;
    void hidePopup() override;

Q_SIGNALS:
    /// The date has changed, also by program. The argument is the value (but see setValue()).
    void changedValue(const QString &newValue);

protected:
    void keyPressEvent(QKeyEvent *event) override;

protected Q_SLOTS:
    /// Takes the date that was picked and closes the calendar.
    void calendarActivated(const QDate &date);
    /// Reads the text after every change of it.
    void onTextChanged();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
