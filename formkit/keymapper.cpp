// SPDX-License-Identifier: BSD-3-Clause
#include "keymapper.h"

#include "keymapper_p.h"

#include <QKeyEvent>

bool KeyMapper::isDecimal(QKeyEvent *event)
{
    constexpr quint32 MacKeypadDecimal = 0x41;
    return event->nativeVirtualKey() == MacKeypadDecimal || Keyboard::isDecimal(*event);
}

bool KeyMapper::isAsciiControl(int code)
{
    return code < 0x20 || code == 0x7f;
}

int KeyMapper::visibleKeycodeByNative(QKeyEvent *event)
{
    if (event->text().isEmpty())
        return event->key();
    const ushort code = Keyboard::unmodifiedCharacter(*event).unicode();
    return code < 0x80 && !isAsciiControl(code) ? code : event->key();
}
