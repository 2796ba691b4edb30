// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLoggingCategory>

// "QGuiLog": debug lines on what the form components do.
Q_DECLARE_LOGGING_CATEGORY(guiLog)
