// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

namespace Formkit {

/// Registers the library's types in Qt's meta-type system. The library makes one object of it when
/// it is loaded; more do no harm.
class FORMKIT_EXPORT Main
{
public:
    Main();
};

} // namespace Formkit
