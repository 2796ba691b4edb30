// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QHash>
#include <QString>

class QLabel;
class QWidget;

/// The captions in a form: the labels whose buddy is a control.
class Captions
{
public:
    /// Those that there are now.
    explicit Captions(const QWidget *form);

    /// Null for a control without a caption.
    QLabel *of(const QWidget *control) const { return m_labels.value(control); }
    /// The text without the '&' of its shortcut, and without a colon at the end.
    QString textOf(const QWidget *control) const;

    /// A text without the '&' of a shortcut; "&&" stands for an ampersand.
    static QString spoken(const QString &text);

private:
    QHash<const QWidget *, QLabel *> m_labels;
};
