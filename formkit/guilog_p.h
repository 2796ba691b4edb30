// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QLoggingCategory>

// The category "QGuiLog", for debug lines of the form components.
Q_DECLARE_LOGGING_CATEGORY(guiLog)
