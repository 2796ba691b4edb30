// SPDX-License-Identifier: BSD-3-Clause
#include "plugin.h"

FormkitDesignerPlugin::FormkitDesignerPlugin()
{
    for (const Control &control : controls())
        m_widgets.push_back(std::make_unique<CustomWidget>(control));
}

QList<QDesignerCustomWidgetInterface *> FormkitDesignerPlugin::customWidgets() const
{
    QList<QDesignerCustomWidgetInterface *> widgets;
    for (const auto &widget : m_widgets)
        widgets << widget.get();
    return widgets;
}
