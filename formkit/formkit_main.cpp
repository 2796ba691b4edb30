// SPDX-License-Identifier: BSD-3-Clause
#include "formkit_main.h"

#include "values.h"

namespace Formkit {

Main::Main()
{
    qRegisterMetaType<Values>("Values");
}

static const Main loaded;

} // namespace Formkit
