// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

#include <functional>

/// The platform's way to show a file, for shellShowFile(). Each platform has its own source file.
namespace FileBrowser {

/// Brings the desktop's file browser to the front with the file (an absolute path) selected.
/// Returns at once. Calls `otherwise`, now or later, if there is no file browser.
void select(const QString &path, const std::function<void()> &otherwise);

} // namespace FileBrowser
