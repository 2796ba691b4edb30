#pragma once

#include <formkit/formkit_export.h>

#include <QMap>
#include <QMetaType>
#include <QString>
#include <QVariant>

// The content of a form: a value by the name of each field. Values are texts in system form
// (see the controls' Value), each held as a QVariant with a QString inside.
//
// Registered as the meta type "Values" when the library is loaded, so that it travels in
// QVariants and queued signals.
class FORMKIT_EXPORT Values : public QMap<QString, QVariant>
{
public:
    using QMap<QString, QVariant>::operator[];
    // The value of a name as text; empty, and nothing is inserted, when the name is absent.
    // On a Values that is not const the map's own operator[] applies, which inserts.
    QString operator[](const QString &name) const;
};

Q_DECLARE_METATYPE(Values)
