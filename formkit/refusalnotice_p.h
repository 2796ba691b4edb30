// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>

/// Tells the user of a field why it refused something: a tool tip, a short flash of a frame around
/// the field (once a second at most, never where the style animates nothing), and an alert for
/// assistive technology. A doubt that lasts keeps the frame.
class RefusalNotice : public QWidget
{
    Q_OBJECT

public:
    /// Belongs to the field and lies over it.
    explicit RefusalNotice(QWidget *field);

    /// Says the reason at a place in the field. Nothing happens while the field is hidden.
    void say(const QString &reason, const QPoint &place);
    /// Takes the tool tip away if it is ours.
    void unsay();
    /// Keeps the frame while there is a doubt, which the tool tip tells when the mouse rests on
    /// the field. An empty one ends it.
    void setDoubt(const QString &doubt);

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *field, QEvent *event) override;

private:
    void showTip(const QPoint &place);
    void flash();
    void endFlash();

    QString m_said;
    QString m_doubt;
    QElapsedTimer m_lastFlash;
};
