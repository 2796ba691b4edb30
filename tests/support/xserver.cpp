#include "support/xserver.h"

// This header of C names a member so.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

XServer::~XServer()
{
    m_server.terminate();
    m_server.waitForFinished();
}

bool XServer::start()
{
    m_server.setStandardErrorFile(QProcess::nullDevice());
    m_server.start("Xvfb", {"-displayfd", "1", "-screen", "0", "800x600x24", "-nolisten", "tcp"});
    while (!m_display.endsWith('\n')) {
        if (!m_server.waitForReadyRead(30000))
            return false;
        m_display += m_server.readAllStandardOutput();
    }
    m_display = ':' + m_display.trimmed();
    return true;
}

void XServer::useForQt() const
{
    qputenv("DISPLAY", m_display);
    qputenv("QT_QPA_PLATFORM", "xcb");
}

bool XServer::run(const QString &program, const QStringList &arguments)
{
    return QProcess::execute(program, arguments) == 0;
}

bool XServer::switchLayout(int layout)
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    free(xcb_xkb_use_extension_reply(connection, xcb_xkb_use_extension(connection, 1, 0), nullptr));
    xcb_generic_error_t *error = xcb_request_check(
        connection, xcb_xkb_latch_lock_state_checked(connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0,
                                                     true, uint8_t(layout), 0, false, 0));
    xcb_disconnect(connection);
    free(error);
    return !error;
}
