// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QExtensionFactory>

/// Makes Designer's extensions for the library's controls: task menus, and the pages of a
/// FormSelector.
class ExtensionFactory : public QExtensionFactory
{
    Q_OBJECT

public:
    static void registerOnce(QExtensionManager *manager);

protected:
    QObject *createExtension(QObject *object, const QString &iid, QObject *parent) const override;

private:
    using QExtensionFactory::QExtensionFactory;
};
