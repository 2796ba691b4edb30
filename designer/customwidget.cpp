// SPDX-License-Identifier: BSD-3-Clause
#include "customwidget.h"

#include "extensionfactory.h"

#include <QDesignerFormEditorInterface>
#include <QExtensionManager>
#include <QIcon>

// Of pixmaps: Designer's widget box does not show an icon without sizes, such as a drawn one.
QIcon CustomWidget::icon() const
{
    const QIcon drawing(QStringLiteral(":/formkit/designer/%1.svg").arg(name().toLower()));
    QIcon icon;
    for (const int side : {22, 44})
        icon.addPixmap(drawing.pixmap(side));
    return icon;
}

QWidget *CustomWidget::createWidget(QWidget *parent)
{
    return m_isDesigning ? m_control.createDesigned(parent) : m_control.create(parent);
}

void CustomWidget::initialize(QDesignerFormEditorInterface *core)
{
    m_isDesigning = true;
    ExtensionFactory::registerOnce(core->extensionManager());
}
