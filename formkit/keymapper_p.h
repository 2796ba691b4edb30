// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QChar>

class QKeyEvent;

/// The platform's answers for KeyMapper. Each platform has its own source file.
namespace Keyboard {

/// Whether the key is a decimal key of the keypad that KeyMapper does not know itself.
bool isDecimal(const QKeyEvent &event);

/// The first UTF-16 unit that the key gives in the current layout without modifiers. Null if it
/// gives none, or the layout is not known.
QChar unmodifiedCharacter(const QKeyEvent &event);

} // namespace Keyboard
