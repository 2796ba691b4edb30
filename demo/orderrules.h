// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/values.h>

#include <QMap>

/// The names whose values the demo's terminal rejects, each with the reason.
QMap<QString, QString> rejectedFields(const Values &order);
