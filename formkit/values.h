// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QMap>
#include <QMetaType>
#include <QString>
#include <QVariant>

/// The content of a form: a value for each name. Values are texts in system form (see the controls'
/// Value), each held as a QVariant with a QString inside. insert() adds one.
///
/// The library registers the meta type "Values" when it is loaded, for QVariants and queued
/// signals.
class FORMKIT_EXPORT Values : public QMap<QString, QVariant>
{
public:
    /// The value of a name as text. For a name that is absent the text is empty, and nothing is
    /// inserted. The result is const so that an assignment to it, which would have no effect, does
    /// not compile.
    // NOLINTNEXTLINE(readability-const-return-type)
    const QString operator[](const QString &name) const;
};

Q_DECLARE_METATYPE(Values)
