// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class QLabel;

/// A small sign that is drawn, and so is sharp at any scale. Its tool tip says what it means; a
/// click on it gives the field the focus.
class FieldSign : public QWidget
{
    Q_OBJECT

public:
    enum Kind { Error, Changed };
    FieldSign(Kind kind, QWidget *field, QWidget *host);

    static int extentOf(Kind kind, const QWidget *field);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    const Kind m_kind;
    QWidget *const m_field;
};

/// Shows on a control that it is wrong, and why, or that it has been changed, and tells assistive
/// technology by name, description and events:
/// - the sign of an error stands inside a line edit on the side where its text does not begin, and
///   at the end of the text of a button or a list;
/// - the reason is the sign's tool tip, and a line under the control where the form has room;
/// - a required control is named "Price, required", a wrong one described "Not valid: At most 100".
/// The control's own name and description come back when there is nothing to say.
class FieldMark : public QObject
{
    Q_OBJECT

public:
    /// Belongs to the control.
    explicit FieldMark(QWidget *control);
    /// Takes everything off the control.
    ~FieldMark() override;

    /// What the control is called, for the name of one that is required; an empty one is given no
    /// name.
    void setRequired(const QString &caption);
    /// An empty reason removes the mark. The preface is what is said before the reason.
    void setReason(const QString &reason, const QString &preface = {});
    void setChanged(bool isChanged);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *host() const;
    void describe();
    void place();
    void placeError();
    void placeLine();
    void hideLine();

    QWidget *const m_control;
    QString m_reason;
    QString m_preface;
    QString m_required;    // the name that the control was given
    QString m_ownName;     // before
    QString m_description; // that the control was given
    QString m_ownDescription;
    QPointer<FieldSign> m_error;
    QPointer<FieldSign> m_change;
    QPointer<QLabel> m_line;
};
