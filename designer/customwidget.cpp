// SPDX-License-Identifier: BSD-3-Clause
#include "customwidget.h"

#include "extensionfactory.h"

#include <QDesignerFormEditorInterface>
#include <QExtensionManager>
#include <QIcon>

// As pixmaps: Designer's widget box shows no icon that names no sizes, as one drawn does not.
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
