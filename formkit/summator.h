// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QObject>
#include <QString>

/// Adds two fields of a form: `Value` is `Summand` plus `Addendum`. It is an invisible member of
/// the form's tree. Its dynamic property "fields" names the fields ("Price=Summand Offset=Addendum
/// Total=Value").
///
/// - All three are texts in the system form of a decimal. The sum has the larger number of fraction
///   digits of the two: "10.5" and "0.25" make "10.75".
/// - When there is no sum, the value is the text of the summand, without any message: if either
///   text is no number in system form (an empty text, "-", "1,5"), or the sum does not fit a
///   decimal.
/// - In a form it gets its summands from the hub alone: when it is bound, if the hub holds them,
///   and whenever they change. A text that was in a field before the hub knew the field arrives
///   only if the field comes before the summator in the tree. The value cannot be written.
class FORMKIT_EXPORT Summator : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value READ getValue NOTIFY changedValue USER true)
    Q_PROPERTY(QString Summand READ getSummand WRITE setSummand)
    Q_PROPERTY(QString Addendum READ getAddendum WRITE setAddendum)

public:
    explicit Summator(QObject *parent = nullptr);

    /// The sum and its parts, as they were set.
    QString getValue() const { return m_value; }
    QString getSummand() const { return m_summand; }
    QString getAddendum() const { return m_addendum; }

    /// Take any text.
    void setSummand(const QString &text);
    void setAddendum(const QString &text);

    /// Adds up again.
    void update();
    /// Emits changedValue() with the value as it is, for a listener that was disconnected for a
    /// while.
    void report();

Q_SIGNALS:
    /// The value has become another text.
    void changedValue(const QString &value);

private:
    QString sum() const;

    QString m_value;
    QString m_summand;
    QString m_addendum;
};
