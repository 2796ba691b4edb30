// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>
#include <QVector>

#include <functional>

/// How the selectors compare texts: ignoring letter case exactly as QString::compare() and
/// startsWith() do with Qt::CaseInsensitive. Each character is folded to one character: ς equals σ,
/// and ß only itself.
namespace FoldedText {

/// The folded text. Comparing folded texts exactly is comparing the texts ignoring case.
QString folded(const QString &text);

/// A key for QCompleter. Keys compare, and begin with one another, as the folded texts do.
/// QCompleter caches results by QString::toLower(), which folds differently (İ becomes two
/// characters), so the key consists of characters that have no case.
QString completionKey(const QString &text);

/// A hash that is the same for texts that are equal ignoring case.
size_t hash(const QString &text);

/// The numbers 0 to `count` - 1, sorted by their texts ignoring case; equal texts keep their order.
/// Asks for each text once. At a million texts it is several times faster than sorting with
/// QString::compare().
QVector<int> ascending(int count, const std::function<QString(int)> &textOf);

} // namespace FoldedText
