// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>
#include <QVector>

#include <functional>

class QWidget;

/// What one value must be. It answers with the reason why a value is wrong, in words for the user,
/// or with nothing. It is not asked about an empty value. The control, which may be null, decides
/// how limits are written.
using Rule = std::function<QString(const QString &value, const QWidget *control)>;

namespace Rules {

/// A number, or a date, within limits; an empty one is none. "today" is a limit of dates, also with
/// days added: "today+30". A value that cannot be compared with a limit is right.
Rule range(const QString &least, const QString &most);
/// A multiple of a number.
Rule step(const QString &step);
Rule oneOf(const QStringList &values);
/// The whole of the value matches a regular expression.
Rule matches(const QString &pattern);

/// Reads the rules of a form file; see FormRules. What is no rule is skipped with a warning.
QVector<Rule> read(const QString &text);

} // namespace Rules
