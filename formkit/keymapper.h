// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

class QKeyEvent;

/// Small questions about keys.
class FORMKIT_EXPORT KeyMapper
{
public:
    KeyMapper() = delete;

    /// True for the decimal key of the numeric keypad: the virtual key 0x41 of macOS on every
    /// platform and, under X11, the key symbols KP_Decimal and KP_Separator. Elsewhere than on
    /// macOS 0x41 may be another key (under X11 it is a capital A): ask only about events whose
    /// modifiers are exactly Qt::KeypadModifier.
    static bool isDecimal(QKeyEvent *event);

    /// True for the codes of control characters: below 0x20, and 0x7f.
    static bool isAsciiControl(int code);

    /// The printable ASCII character that the event's key gives in the current keyboard layout
    /// without modifiers ('a' for Shift+A), or event->key() when the event carries no text or the
    /// key gives another character in that layout. The layout is that of macOS's current input
    /// source, or of the X server that $DISPLAY names, which is asked anew each time (a few
    /// milliseconds); on other platforms it is event->key().
    static int visibleKeycodeByNative(QKeyEvent *event);
};
