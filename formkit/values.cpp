#include "values.h"

// NOLINTNEXTLINE(readability-const-return-type)
const QString Values::operator[](const QString &name) const
{
    return value(name).toString();
}
