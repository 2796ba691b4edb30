// SPDX-License-Identifier: BSD-3-Clause
#include "keymapper_p.h"

#include <QKeyEvent>

#include <Carbon/Carbon.h>

namespace {

// Gets the UTF-16 units of the key in the layout. False if it gives none.
bool translate(CFDataRef layout, quint32 virtualKey, UniChar (&units)[4])
{
    UInt32 deadKeyState = 0;
    UniCharCount length = 0;
    const OSStatus status = UCKeyTranslate(
        reinterpret_cast<const UCKeyboardLayout *>(CFDataGetBytePtr(layout)), UInt16(virtualKey),
        kUCKeyActionDisplay, 0, LMGetKbdType(), 0, &deadKeyState, 4, &length, units);
    return status == noErr && length > 0;
}

} // namespace

// KeyMapper knows the only one.
bool Keyboard::isDecimal(const QKeyEvent &)
{
    return false;
}

QChar Keyboard::unmodifiedCharacter(const QKeyEvent &event)
{
    const TISInputSourceRef source = TISCopyCurrentKeyboardInputSource();
    if (!source)
        return QChar();
    // The source owns it. Input methods that are no keyboard layout have none.
    const auto layout =
        static_cast<CFDataRef>(TISGetInputSourceProperty(source, kTISPropertyUnicodeKeyLayoutData));
    UniChar units[4] = {};
    const bool translated = layout && translate(layout, event.nativeVirtualKey(), units);
    CFRelease(source);
    if (!translated)
        return QChar();
    const CFStringRef string = CFStringCreateWithCharacters(kCFAllocatorDefault, units, 1);
    if (!string)
        return QChar();
    const QChar character(CFStringGetCharacterAtIndex(string, 0));
    CFRelease(string);
    return character;
}
