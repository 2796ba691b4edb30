// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QChar>

class QKeyEvent;

/// What KeyMapper asks the platform; one file each answers.
namespace Keyboard {

/// Whether the key is one more decimal key of the keypad.
bool isDecimal(const QKeyEvent &event);

/// The first UTF-16 unit that the key gives in the current layout without modifiers, null when
/// it gives none or the layout is not known.
QChar unmodifiedCharacter(const QKeyEvent &event);

} // namespace Keyboard
