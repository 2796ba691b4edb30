// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDesignerFormWindowInterface>
#include <QPointer>
#include <QUndoCommand>
#include <QVariant>

/// Gives a widget of a form a dynamic property, or another value of it, or takes it away, so that
/// Designer can undo it. (Designer's own commands change properties that are there.)
///
/// Texts are best given as bytes: Designer hands the others to translators.
class DynamicPropertyCommand : public QUndoCommand
{
public:
    /// An invalid value takes the property away.
    DynamicPropertyCommand(QDesignerFormWindowInterface *form, QWidget *widget,
                           const QByteArray &name, const QVariant &value);

    void undo() override;
    void redo() override;

private:
    void replace(const QVariant &value, const QVariant &valueOfSheet);

    QPointer<QDesignerFormWindowInterface> m_form;
    QWidget *m_widget;
    QString m_name;
    QVariant m_value;
    QVariant m_former;
    /// As Designer holds it, with what it knows of its translation.
    QVariant m_formerOfSheet;
};
