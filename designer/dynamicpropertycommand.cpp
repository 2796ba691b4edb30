// SPDX-License-Identifier: BSD-3-Clause
#include "dynamicpropertycommand.h"

#include <QDesignerDynamicPropertySheetExtension>
#include <QDesignerFormEditorInterface>
#include <QDesignerPropertyEditorInterface>
#include <QDesignerPropertySheetExtension>
#include <QExtensionManager>

namespace {

template <typename Extension>
Extension *extensionOf(QDesignerFormWindowInterface *form, QWidget *widget)
{
    return qt_extension<Extension *>(form->core()->extensionManager(), widget);
}

} // namespace

DynamicPropertyCommand::DynamicPropertyCommand(QDesignerFormWindowInterface *form, QWidget *widget,
                                               const QByteArray &name, const QVariant &value)
    : QUndoCommand(QStringLiteral("%1 of %2").arg(QString::fromLatin1(name), widget->objectName()))
    , m_form(form)
    , m_widget(widget)
    , m_name(QString::fromLatin1(name))
    , m_value(value)
    , m_former(widget->property(name))
{
    const auto *sheet = extensionOf<QDesignerPropertySheetExtension>(form, widget);
    if (m_former.isValid())
        m_formerOfSheet = sheet->property(sheet->indexOf(m_name));
}

void DynamicPropertyCommand::redo()
{
    replace(m_value, m_value);
}

void DynamicPropertyCommand::undo()
{
    replace(m_former, m_formerOfSheet);
}

// Removes the property first, because the sheet keeps the type of a property that exists.
void DynamicPropertyCommand::replace(const QVariant &value, const QVariant &valueOfSheet)
{
    auto *sheet = extensionOf<QDesignerPropertySheetExtension>(m_form, m_widget);
    auto *dynamic = extensionOf<QDesignerDynamicPropertySheetExtension>(m_form, m_widget);
    if (!dynamic->canAddDynamicProperty(m_name)) {
        dynamic->removeDynamicProperty(sheet->indexOf(m_name));
        // The sheet only hides the property.
        m_widget->setProperty(m_name.toLatin1(), QVariant());
    }
    if (value.isValid())
        sheet->setProperty(dynamic->addDynamicProperty(m_name, value), valueOfSheet);
    QDesignerPropertyEditorInterface *editor = m_form->core()->propertyEditor();
    editor->setObject(editor->object());
}
