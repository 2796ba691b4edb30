#include "values.h"

QString Values::operator[](const QString &name) const
{
    return value(name).toString();
}
