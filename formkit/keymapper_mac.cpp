// SPDX-License-Identifier: BSD-3-Clause
#include "keymapper_p.h"

#include <QKeyEvent>

#include <Carbon/Carbon.h>

namespace {

// The units of the key in the layout; false when it gives none.
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

// Its virtual key is known to KeyMapper.
bool Keyboard::isDecimal(const QKeyEvent &)
{
    return false;
}

QChar Keyboard::unmodifiedCharacter(const QKeyEvent &event)
{
    const TISInputSourceRef source = TISCopyCurrentKeyboardInputSource();
    if (!source)
        return QChar();
    // Absent for input methods that are no keyboard layout; belongs to the source.
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
