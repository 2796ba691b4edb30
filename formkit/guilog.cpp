// SPDX-License-Identifier: BSD-3-Clause
#include "guilog_p.h"

Q_LOGGING_CATEGORY(guiLog, "QGuiLog")
