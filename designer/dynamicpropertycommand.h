// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDesignerFormWindowInterface>
#include <QPointer>
#include <QUndoCommand>
#include <QVariant>

/// Sets or removes a dynamic property of a widget in a form, in a way that Designer can undo.
/// (Designer's own commands only change properties that exist.)
///
/// Pass texts as bytes: Designer marks others for translation.
class DynamicPropertyCommand : public QUndoCommand
{
public:
    /// An invalid value removes the property.
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
    /// The former value as Designer holds it, with notes for its translation.
    QVariant m_formerOfSheet;
};
