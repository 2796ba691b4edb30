// SPDX-License-Identifier: BSD-3-Clause
#include "processmemory.h"

#include <QFile>

#include <stdexcept>

#include <malloc.h>

namespace {

double megabytes(const char *entry)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        throw std::runtime_error("memory: needs /proc/self/status");
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
        if (line.startsWith(entry))
            return line.mid(int(qstrlen(entry))).simplified().split(' ').first().toDouble() / 1024;
    }
    throw std::runtime_error("memory: no such entry in /proc/self/status");
}

} // namespace

double ProcessMemory::now()
{
    return megabytes("VmRSS:");
}

double ProcessMemory::peak()
{
    return megabytes("VmHWM:");
}

void ProcessMemory::resetPeak()
{
    malloc_trim(0);
    QFile reset(QStringLiteral("/proc/self/clear_refs"));
    if (!reset.open(QIODevice::WriteOnly) || reset.write("5") != 1)
        throw std::runtime_error("memory: needs /proc/self/clear_refs");
}
