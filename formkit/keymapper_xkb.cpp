// SPDX-License-Identifier: BSD-3-Clause
#include "keymapper_p.h"

#include <QGuiApplication>
#include <QKeyEvent>

#include <memory>

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

namespace {

struct Release
{
    void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    void operator()(xkb_context *context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap *keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state *state) const { xkb_state_unref(state); }
};

template <typename T> using Handle = std::unique_ptr<T, Release>;

// The state of the X server's keyboard: its layouts, and the one that is in use. Opens a connection
// of its own, since Qt's is private.
Handle<xkb_state> currentKeyboard()
{
    const Handle<xcb_connection_t> connection(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get()) ||
        !xkb_x11_setup_xkb_extension(
            connection.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr))
        return {};
    const Handle<xkb_context> context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    const int device = xkb_x11_get_core_keyboard_device_id(connection.get());
    if (!context || device < 0)
        return {};
    const Handle<xkb_keymap> keymap(xkb_x11_keymap_new_from_device(
        context.get(), connection.get(), device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap)
        return {};
    return Handle<xkb_state>(xkb_x11_state_new_from_device(keymap.get(), connection.get(), device));
}

} // namespace

// Under X11 and Wayland Qt's virtual keys are key symbols. With NumLock off the key is KP_Delete
// and deletes.
bool Keyboard::isDecimal(const QKeyEvent &event)
{
    return event.nativeVirtualKey() == XKB_KEY_KP_Decimal ||
           event.nativeVirtualKey() == XKB_KEY_KP_Separator;
}

QChar Keyboard::unmodifiedCharacter(const QKeyEvent &event)
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return QChar();
    const Handle<xkb_state> state = currentKeyboard();
    if (!state)
        return QChar();
    // For an X11 event this is the key code.
    const xkb_keycode_t key = event.nativeScanCode();
    const xkb_layout_index_t layout = xkb_state_key_get_layout(state.get(), key);
    const xkb_keysym_t *symbols = nullptr;
    if (layout == XKB_LAYOUT_INVALID ||
        xkb_keymap_key_get_syms_by_level(xkb_state_get_keymap(state.get()), key, layout, 0,
                                         &symbols) != 1)
        return QChar();
    const quint32 character = xkb_keysym_to_utf32(symbols[0]);
    return character <= 0xffff ? QChar(ushort(character)) : QChar();
}
