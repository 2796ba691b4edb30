// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Guards against programming errors, in every build: a precondition that does not hold ends
/// the process at the call that broke it. Nothing that a peer sends may reach one.
[[noreturn]] void ftpAssertionFailed(const char *expression, const char *file, int line);

/// The text is given beside the condition because logs are searched for it: reformatting the
/// condition must not alter it.
#define FTP_ASSERT(condition, text)                                                                \
    do {                                                                                           \
        if (!(condition))                                                                          \
            ftpAssertionFailed(text, __FILE__, __LINE__);                                          \
    } while (false)
