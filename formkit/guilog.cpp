#include "guilog_p.h"

Q_LOGGING_CATEGORY(guiLog, "QGuiLog")
