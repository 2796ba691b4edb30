// SPDX-License-Identifier: BSD-3-Clause
#include "tracelog.h"

#include <cstring>

namespace {

TraceLog *currentLog = nullptr;
QtMessageHandler nextHandler = nullptr;

void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (currentLog && context.category && std::strcmp(context.category, "QGuiLog") == 0)
        Q_EMIT currentLog->line(text.simplified());
    else if (nextHandler)
        nextHandler(type, context, text);
}

} // namespace

TraceLog::TraceLog(QObject *parent) : QObject(parent)
{
    currentLog = this;
    nextHandler = qInstallMessageHandler(handle);
}

TraceLog::~TraceLog()
{
    qInstallMessageHandler(nextHandler);
    currentLog = nullptr;
}
