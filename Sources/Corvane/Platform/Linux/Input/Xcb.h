#pragma once

#include <QByteArray>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace corvane {

struct XcbDisconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XcbConnection = std::unique_ptr<xcb_connection_t, XcbDisconnect>;

struct XcbFree {
    void operator()(void* reply) const { std::free(reply); } // NOLINT(cppcoreguidelines-no-malloc): allocated by xcb
};
/// A reply, event or error from xcb.
template <typename Reply> using XcbReply = std::unique_ptr<Reply, XcbFree>;

/// Null if no X server answers. An empty display is the one of the environment.
inline XcbConnection connectToX(const QByteArray& display)
{
    XcbConnection connection(xcb_connect(display.isEmpty() ? nullptr : display.constData(), nullptr));
    if (xcb_connection_has_error(connection.get()) != 0)
        connection.reset();
    return connection;
}

inline xcb_screen_t* firstScreen(xcb_connection_t* connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

inline xcb_atom_t atomNamed(xcb_connection_t* connection, const QByteArray& name)
{
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, uint16_t(name.size()), name.constData()), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

}
