// SPDX-License-Identifier: BSD-3-Clause
#include "values.h"

// NOLINTNEXTLINE(readability-const-return-type)
const QString Values::operator[](const QString &name) const
{
    return value(name).toString();
}
