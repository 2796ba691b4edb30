// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "customwidget.h"

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <memory>
#include <vector>

/// The plug-in that shows formkit's controls in Qt Designer and makes them for QUiLoader.
class FormkitDesignerPlugin : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)
    Q_PLUGIN_METADATA(IID QDesignerCustomWidgetCollectionInterface_iid)

public:
    FormkitDesignerPlugin();

    QList<QDesignerCustomWidgetInterface *> customWidgets() const override;

private:
    std::vector<std::unique_ptr<CustomWidget>> m_widgets;
};
