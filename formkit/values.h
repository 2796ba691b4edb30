// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

#include <QMap>
#include <QMetaType>
#include <QString>
#include <QVariant>

/// The content of a form: a value by the name of each field. Values are texts in system form
/// (see the controls' Value), each held as a QVariant with a QString inside. insert() fills it.
///
/// Registered as the meta type "Values" when the library is loaded, so that it travels in
/// QVariants and queued signals.
class FORMKIT_EXPORT Values : public QMap<QString, QVariant>
{
public:
    /// The value of a name as text; empty, and nothing is inserted, when the name is absent.
    /// Const, so that an assignment to it, which would set nothing, does not compile.
    // NOLINTNEXTLINE(readability-const-return-type)
    const QString operator[](const QString &name) const;
};

Q_DECLARE_METATYPE(Values)
