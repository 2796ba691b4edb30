// SPDX-License-Identifier: BSD-3-Clause
#include "extensionfactory.h"

#include "formselectorpages.h"
#include "taskmenu.h"

#include <QExtensionManager>

void ExtensionFactory::registerOnce(QExtensionManager *manager)
{
    if (manager->findChild<ExtensionFactory *>())
        return;
    auto *factory = new ExtensionFactory(manager);
    manager->registerExtensions(factory, Q_TYPEID(QDesignerContainerExtension));
    manager->registerExtensions(factory, Q_TYPEID(QDesignerTaskMenuExtension));
}

QObject *ExtensionFactory::createExtension(QObject *object, const QString &iid,
                                           QObject *parent) const
{
    if (iid == Q_TYPEID(QDesignerContainerExtension)) {
        auto *selector = dynamic_cast<DesignedFormSelector *>(object);
        return selector ? new FormSelectorPages(selector, extensionManager(), parent) : nullptr;
    }
    auto *widget = qobject_cast<QWidget *>(object);
    return widget && TaskMenu::isFor(widget) ? new TaskMenu(widget, parent) : nullptr;
}
