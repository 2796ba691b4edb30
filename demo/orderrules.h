// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/values.h>

#include <QMap>

/// What the terminal of this demo accepts as an order: the reason for each name whose value it
/// rejects.
QMap<QString, QString> rejectedFields(const Values &order);
