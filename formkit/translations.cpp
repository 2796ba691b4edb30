// SPDX-License-Identifier: BSD-3-Clause
#include "translations.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTranslator>

namespace {

QPointer<QTranslator> loaded;

void loadAtStart()
{
    Formkit::loadTranslations();
}

} // namespace

bool Formkit::loadTranslations(const QLocale &locale)
{
    delete loaded;
    loaded = new QTranslator(QCoreApplication::instance());
    const bool isLoaded = loaded->load(locale, QStringLiteral("formkit"), QStringLiteral("_"),
                                       QStringLiteral(":/formkit/translations"));
    if (isLoaded)
        QCoreApplication::installTranslator(loaded);
    return isLoaded;
}

Q_COREAPP_STARTUP_FUNCTION(loadAtStart)
