// SPDX-License-Identifier: BSD-3-Clause
// A macOS of a few variables: those of Carbon's types and functions that KeyMapper uses, so that
// its macOS file is compiled and run elsewhere.
#pragma once

#include <cstdint>
#include <string>

using UInt8 = std::uint8_t;
using UInt16 = std::uint16_t;
using UInt32 = std::uint32_t;
using OSStatus = std::int32_t;
using UniChar = UInt16;
using UniCharCount = unsigned long;
using CFStringRef = const struct CFString *;
using CFDataRef = const struct CFData *;
using TISInputSourceRef = struct InputSource *;
struct UCKeyboardLayout;
enum { noErr = 0, kUCKeyActionDisplay = 3, kTISPropertyUnicodeKeyLayoutData = 77 };
constexpr std::nullptr_t kCFAllocatorDefault = nullptr;

struct StandIn
{
    std::string missing;
    std::u16string units;
    UniChar string = 0;
    int held = 0;
};
inline StandIn standIn;

template <typename T> T hold(const char *what)
{
    standIn.held += standIn.missing != what;
    return standIn.missing == what ? nullptr : reinterpret_cast<T>(&standIn);
}
inline void CFRelease(const void *)
{
    --standIn.held;
}
inline TISInputSourceRef TISCopyCurrentKeyboardInputSource()
{
    return hold<TISInputSourceRef>("source");
}
inline void *TISGetInputSourceProperty(TISInputSourceRef, int key)
{
    const bool has = key == kTISPropertyUnicodeKeyLayoutData && standIn.missing != "layout";
    return has ? &standIn : nullptr;
}
inline const UInt8 *CFDataGetBytePtr(CFDataRef data)
{
    return reinterpret_cast<const UInt8 *>(data);
}
inline UInt8 LMGetKbdType()
{
    return 40;
}
/// The layout belongs to the source, which must still be held.
inline OSStatus UCKeyTranslate(const UCKeyboardLayout *, UInt16 key, UInt16 action,
                               UInt32 modifiers, UInt32 keyboard, UInt32 options, UInt32 *deadKeys,
                               UniCharCount room, UniCharCount *length, UniChar *units)
{
    const bool asked = key == 12 && action == kUCKeyActionDisplay && modifiers == 0 &&
                       keyboard == 40 && options == 0 && *deadKeys == 0 && room == 4 &&
                       standIn.held == 1;
    *length = standIn.units.copy(reinterpret_cast<char16_t *>(units), room);
    return asked && standIn.missing != "translation" ? noErr : -50;
}
inline CFStringRef CFStringCreateWithCharacters(std::nullptr_t, const UniChar *units, long count)
{
    standIn.string = count == 1 ? *units : 0;
    return hold<CFStringRef>("string");
}
inline UniChar CFStringGetCharacterAtIndex(CFStringRef, long)
{
    return standIn.string;
}
