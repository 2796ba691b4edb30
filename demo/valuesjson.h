// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/values.h>

#include <QJsonObject>

/// Values as a JSON object of texts, and back.
namespace ValuesJson {

QJsonObject toJson(const Values &values);

/// Reads a file with one object of texts, numbers, and true and false (read as "Y" and "N"). On
/// failure the result is empty, and `error` names file, place and reason.
Values read(const QString &file, QString *error);

} // namespace ValuesJson
