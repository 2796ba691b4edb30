// SPDX-License-Identifier: BSD-3-Clause
#include "freememory_p.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>

void giveBackFreeMemory()
{
    malloc_trim(0);
}
#else
void giveBackFreeMemory() {}
#endif
