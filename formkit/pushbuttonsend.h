// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QIcon>
#include <QPointer>
#include <QPushButton>

class FormRules;

/// A button that sends one of several values: the text of its dynamic property "value", set in the
/// form designer. The button whose value is selected has an OK icon and is the form's default.
///
/// Do not make it checkable: a checkable button stays down, and screen readers call it a check box.
/// If it is exclusive too, they call it a radio button, an arrow key that reaches it sends, and Tab
/// does not reach it while another one is down.
class FORMKIT_EXPORT PushButtonSend : public QPushButton
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    explicit PushButtonSend(QWidget *parent = nullptr);

    /// The button's own text while it is checked, otherwise the text that was last set or clicked.
    QString getValue() const;
    /// Selects the button if the text is its own, otherwise removes its icon; without a signal. A
    /// button that has become the form's default stays so until another button does.
    void setValue(const QString &value);

    /// What a button does about errors in the form.
    enum ErrorPolicy {
        ChecksOnClick,   ///< a click runs FormRules::check(), and sends only if nothing is wrong
        DisabledByErrors ///< it is enabled only while nothing is wrong; else its tool tip and its
                         ///< description say what is wrong first
    };
    Q_ENUM(ErrorPolicy)
    /// Ties the button to a form's rules. Null, or the end of the rules, unties it and enables it.
    /// Where a click does not send, changedValue() does not come; clicked() is Qt's and does.
    void setRules(FormRules *rules, ErrorPolicy policy = ChecksOnClick);

    /// Leaves room for the OK icon also while it is not shown, so that no neighbour moves.
    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user has clicked the button; the argument is its own text.
    void changedValue(const QString &value);

protected:
    void changeEvent(QEvent *event) override;
    void nextCheckState() override;

private:
    void setThisState(bool selected);

    const QIcon &okIcon() const;

    void showErrors();

    QPointer<FormRules> m_rules;
    ErrorPolicy m_policy = ChecksOnClick;
    QString m_value;
    /// The style's icon, read once: each reading makes new pictures, which Qt keeps for a while.
    mutable QIcon m_okIcon;
};
