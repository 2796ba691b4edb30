// The few declarations of macOS's Carbon.h that KeyMapper's macOS file uses, so that it is
// compiled and its logic run elsewhere. The test defines the functions.
#pragma once

#include <cstdint>

using UInt8 = std::uint8_t;
using UInt16 = std::uint16_t;
using UInt32 = std::uint32_t;
using OSStatus = std::int32_t;
using OptionBits = UInt32;
using UniChar = UInt16;
using UniCharCount = unsigned long;
using CFIndex = long;
using CFTypeRef = const void *;
using CFAllocatorRef = const struct __CFAllocator *;
using CFStringRef = const struct __CFString *;
using CFDataRef = const struct __CFData *;
using TISInputSourceRef = struct __TISInputSource *;
struct UCKeyboardLayout;

enum { noErr = 0 };
enum { kUCKeyActionDisplay = 3 };
constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;
extern const CFStringRef kTISPropertyUnicodeKeyLayoutData;

TISInputSourceRef TISCopyCurrentKeyboardInputSource();
void *TISGetInputSourceProperty(TISInputSourceRef source, CFStringRef key);
UInt8 LMGetKbdType();
OSStatus UCKeyTranslate(const UCKeyboardLayout *layout, UInt16 virtualKeyCode, UInt16 keyAction,
                        UInt32 modifierKeyState, UInt32 keyboardType, OptionBits options,
                        UInt32 *deadKeyState, UniCharCount maxStringLength,
                        UniCharCount *actualStringLength, UniChar *unicodeString);
const UInt8 *CFDataGetBytePtr(CFDataRef data);
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar *characters,
                                         CFIndex count);
UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);
void CFRelease(CFTypeRef object);
