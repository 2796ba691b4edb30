// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QLineEdit>

#include <memory>

struct NumberRules;

/// The settings of a NumberEditor that are no values of a form: Properties::connectAll() binds what
/// a control's own class declares, and these belong to its base. To bind one all the same, name it
/// in "fields": "PriceStep=Step". Numbers are texts in system form ("0.05").
class FORMKIT_EXPORT NumberEntry : public QLineEdit
{
    Q_OBJECT
    /// By how much Up and Down change the number: see NumberEditor. Empty, or no positive number:
    /// not at all, and the keys do what they do in a QLineEdit.
    Q_PROPERTY(QString Step READ getStep WRITE setStep)
    /// The least and the greatest number that is valid; empty for none.
    Q_PROPERTY(QString Minimum READ getMinimum WRITE setMinimum)
    Q_PROPERTY(QString Maximum READ getMaximum WRITE setMaximum)
    /// Whether the wheel steps, too, while the field has the focus.
    Q_PROPERTY(bool wheelSteps READ wheelSteps WRITE setWheelSteps)
    /// Whether a typed "k" multiplies by a thousand, and an "m" by a million.
    Q_PROPERTY(bool Multipliers READ getMultipliers WRITE setMultipliers)
    /// Whether a typed minus changes the sign, wherever the caret stands.
    Q_PROPERTY(bool SignToggle READ getSignToggle WRITE setSignToggle)
    /// The unit, which is shown in front of the number or after it and is no part of the text.
    Q_PROPERTY(QString Prefix READ getPrefix WRITE setPrefix)
    Q_PROPERTY(QString Suffix READ getSuffix WRITE setSuffix)

public:
    ~NumberEntry() override;

    /// The properties of these names. A text that is no number is kept, counts as none and is
    /// reported as a warning. New limits leave the text as it is.
    QString getStep() const;
    void setStep(const QString &step);
    QString getMinimum() const;
    void setMinimum(const QString &minimum);
    QString getMaximum() const;
    void setMaximum(const QString &maximum);
    bool wheelSteps() const;
    void setWheelSteps(bool steps);
    bool getMultipliers() const;
    void setMultipliers(bool multiplies);
    bool getSignToggle() const;
    void setSignToggle(bool toggles);
    QString getPrefix() const;
    void setPrefix(const QString &prefix);
    QString getSuffix() const;
    void setSuffix(const QString &suffix);

private:
    friend class NumberEditor;
    explicit NumberEntry(QWidget *parent);

    std::unique_ptr<NumberRules> d;
};
