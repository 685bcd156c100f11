#pragma once

#include "Platform/Linux/Input/Xcb.h"

#include <QProcess>
#include <xcb/xtest.h>

namespace corvane {

/// A headless X server with a simulated keyboard.
class XServer {
public:
    explicit XServer(const QStringList& further = {})
    {
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const QStringList arguments { "-displayfd", "1", "-nolisten", "tcp", "-noreset", "-screen", "0", "64x64x24" };
        m_server.start("Xvfb", arguments + further);
        while (m_server.waitForReadyRead() && !m_server.canReadLine()) { }
        display = ':' + m_server.readLine().trimmed();
        m_keyboard.reset(xcb_connect(display.constData(), nullptr));
    }
    ~XServer() { stop(); }

    void stop()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }

    /// Returns once the server has processed the events, so that later requests of other programs come after them.
    void send(const QList<std::pair<uint8_t, xcb_keycode_t>>& events)
    {
        for (const auto& [type, code] : events)
            xcb_test_fake_input(m_keyboard.get(), type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        const XcbReply<xcb_get_input_focus_reply_t> served(
            xcb_get_input_focus_reply(m_keyboard.get(), xcb_get_input_focus(m_keyboard.get()), nullptr));
    }
    void hold(xcb_keycode_t code) { send({ { XCB_KEY_PRESS, code } }); }
    void letGo(xcb_keycode_t code) { send({ { XCB_KEY_RELEASE, code } }); }

    QByteArray display;

private:
    QProcess m_server;
    XcbConnection m_keyboard;
};

// Key codes of a PC keyboard.
inline constexpr xcb_keycode_t control = 37;
inline constexpr xcb_keycode_t alt = 64;
inline constexpr xcb_keycode_t shift = 50;
inline constexpr xcb_keycode_t numLock = 77;
inline constexpr xcb_keycode_t letterN = 57;
inline constexpr xcb_keycode_t letterV = 55;

}
