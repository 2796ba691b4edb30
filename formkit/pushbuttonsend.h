#pragma once

#include <formkit/formkit_export.h>

#include <QIcon>
#include <QPushButton>

// A button that sends one of several values: the text of its dynamic property "value", set
// in the form designer. The button whose value is selected bears an OK icon and is the form's
// default. A button that the form makes checkable stays down besides.
class FORMKIT_EXPORT PushButtonSend : public QPushButton
{
    Q_OBJECT
    Q_CLASSINFO("Properties", "this")
    Q_PROPERTY(QString Value READ getValue WRITE setValue NOTIFY changedValue USER true)

public:
    explicit PushButtonSend(QWidget *parent = nullptr);

    // The button's own text while it is checked, otherwise the text last set or clicked.
    QString getValue() const;
    // Selects the button if the text is its own, silently; otherwise its icon goes. Once the
    // form's default, it stays the default until another button takes its place.
    void setValue(const QString &value);

signals:
    // The user has clicked the button; the argument is its own text.
    void changedValue(const QString &value);

protected:
    void changeEvent(QEvent *event) override;
    void nextCheckState() override;

private:
    void setThisState(bool selected);

    QString m_value;
    // The style's, read once: each reading makes new pictures, which Qt keeps for a while.
    QIcon m_okIcon;
};
