// SPDX-License-Identifier: BSD-3-Clause
#include "formkit/FtpClient/FTPAssert_p.h"

#include <cstdio>
#include <cstdlib>

void ftpAssertionFailed(const char *expression, const char *file, int line)
{
    std::fprintf(stderr, "%s:%d: assertion failed: %s\n", file, line, expression);
    std::abort();
}
