#include "support/stricttest.h"

#include <formkit/keymapper.h>

#include <Carbon/Carbon.h>

#include <QKeyEvent>

// A macOS of a few variables, behind the stand-in declarations.
namespace mac {

bool hasSource = true;
bool hasLayout = true;
bool hasStrings = true;
OSStatus status = noErr;
std::u16string units;
int copied = 0;
int released = 0;

} // namespace mac

struct __CFString
{
    UniChar first;
};

const CFStringRef kTISPropertyUnicodeKeyLayoutData = new __CFString{'k'};

TISInputSourceRef TISCopyCurrentKeyboardInputSource()
{
    mac::copied += mac::hasSource;
    return mac::hasSource ? reinterpret_cast<TISInputSourceRef>(&mac::hasSource) : nullptr;
}

void *TISGetInputSourceProperty(TISInputSourceRef, CFStringRef key)
{
    return mac::hasLayout && key == kTISPropertyUnicodeKeyLayoutData ? &mac::hasLayout : nullptr;
}

UInt8 LMGetKbdType()
{
    return 40;
}

const UInt8 *CFDataGetBytePtr(CFDataRef data)
{
    return reinterpret_cast<const UInt8 *>(data);
}

OSStatus UCKeyTranslate(const UCKeyboardLayout *layout, UInt16 key, UInt16 action, UInt32 modifiers,
                        UInt32 keyboard, OptionBits options, UInt32 *deadKeys, UniCharCount room,
                        UniCharCount *length, UniChar *units)
{
    // The source that owns the layout is still held.
    const bool asked = reinterpret_cast<const bool *>(layout) == &mac::hasLayout && key == 12 &&
                       action == kUCKeyActionDisplay && modifiers == 0 && keyboard == 40 &&
                       options == 0 && *deadKeys == 0 && room == 4 &&
                       mac::copied == mac::released + 1;
    if (!asked)
        return -50;
    *length = mac::units.copy(reinterpret_cast<char16_t *>(units), room);
    return mac::status;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar *characters, CFIndex count)
{
    mac::copied += mac::hasStrings;
    return mac::hasStrings && count == 1 ? new __CFString{*characters} : nullptr;
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex)
{
    return string->first;
}

void CFRelease(CFTypeRef object)
{
    ++mac::released;
    if (object != &mac::hasSource)
        delete static_cast<CFStringRef>(object);
}

class KeyMapperMacTest : public StrictTest
{
    Q_OBJECT

private slots:
    void visibleKeycode_data();
    void visibleKeycode();
    void keypadDecimal();
};

void KeyMapperMacTest::visibleKeycode_data()
{
    QTest::addColumn<QString>("units");
    QTest::addColumn<QString>("missing");
    QTest::addColumn<int>("code");
    const int key = Qt::Key_Q;
    QTest::newRow("a letter") << "a"
                              << "" << int('a');
    QTest::newRow("the first of two") << "^a"
                                      << "" << int('^');
    QTest::newRow("a control character") << "\x1b"
                                         << "" << key;
    QTest::newRow("delete") << "\x7f"
                            << "" << key;
    QTest::newRow("Latin-1 beyond ASCII") << "é"
                                          << "" << key;
    QTest::newRow("beyond Latin-1") << "й"
                                    << "" << key;
    QTest::newRow("a code whose low byte is a letter") << QString(QChar(0x0161)) << "" << key;
    QTest::newRow("nothing") << ""
                             << "" << key;
    QTest::newRow("no source") << "a"
                               << "source" << key;
    QTest::newRow("no layout") << "a"
                               << "layout" << key;
    QTest::newRow("no translation") << "a"
                                    << "translation" << key;
    QTest::newRow("no string") << "a"
                               << "string" << key;
    QTest::newRow("no text in the event") << "a"
                                          << "text" << key;
}

void KeyMapperMacTest::visibleKeycode()
{
    QFETCH(QString, units);
    QFETCH(QString, missing);
    mac::units = units.toStdU16String();
    mac::hasSource = missing != "source";
    mac::hasLayout = missing != "layout";
    mac::hasStrings = missing != "string";
    mac::status = missing == "translation" ? -1 : noErr;
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Q, Qt::ShiftModifier, 0, 12, 0,
                    missing == "text" ? "" : "Q");
    QTEST(KeyMapper::visibleKeycodeByNative(&event), "code");
    QCOMPARE(mac::released, mac::copied);
}

void KeyMapperMacTest::keypadDecimal()
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Period, Qt::KeypadModifier, 0, 0x41, 0, ".");
    QVERIFY(KeyMapper::isDecimal(&event));
    QKeyEvent other(QEvent::KeyPress, Qt::Key_Period, Qt::KeypadModifier, 0, 0xffae, 0, ".");
    QVERIFY(!KeyMapper::isDecimal(&other));
}

QTEST_GUILESS_MAIN(KeyMapperMacTest)

#include "tst_keymapper_mac.moc"
