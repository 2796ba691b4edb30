// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <formkit/formkit_export.h>

class QKeyEvent;

/// What a key is, on each platform.
class FORMKIT_EXPORT KeyMapper
{
public:
    KeyMapper() = delete;

    /// True for the decimal key of the numeric keypad. That is the virtual key 0x41 of macOS, on
    /// every platform, and under X11 also the key symbols KP_Decimal and KP_Separator. Outside
    /// macOS 0x41 may be another key (under X11 it is a capital A): ask only about events whose
    /// modifiers are exactly Qt::KeypadModifier.
    static bool isDecimal(QKeyEvent *event);

    /// True for the code of a control character: below 0x20, or 0x7f.
    static bool isAsciiControl(int code);

    /// The printable ASCII character that the event's key gives in the current keyboard layout
    /// without modifiers ('a' for Shift+A). event->key() if the event has no text, if the key gives
    /// another character in that layout, and on platforms other than macOS and X11. Under X11 this
    /// asks the X server that $DISPLAY names each time, which takes a few milliseconds.
    static int visibleKeycodeByNative(QKeyEvent *event);
};
