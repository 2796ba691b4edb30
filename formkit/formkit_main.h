// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

namespace Formkit {

/// Registers what the library offers to Qt's meta-type system. One object of it is made when
/// the library is loaded; more do no harm.
class FORMKIT_EXPORT Main
{
public:
    Main();
};

} // namespace Formkit
