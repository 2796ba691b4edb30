// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

#include <functional>

/// What shellShowFile() asks the desktop; one file a platform answers.
namespace FileBrowser {

/// Has the desktop's file browser come to the front with the file (an absolute path) selected.
/// Returns at once; `otherwise` is called, now or later, when there is no file browser to do so.
void select(const QString &path, const std::function<void()> &otherwise);

} // namespace FileBrowser
