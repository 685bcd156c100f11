#include "Platform/Linux/Input/X11Screen.h"

#include <algorithm>
#include <cstring>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

namespace corvane {

namespace {

uint32_t numberIn(const QByteArray& bytes)
{
    uint32_t number = 0;
    if (bytes.size() >= qsizetype(sizeof number))
        std::memcpy(&number, bytes.constData(), sizeof number);
    return number;
}

}

X11Screen::X11Screen(const QByteArray& display)
    : m_connection(connectToX(display))
{
    if (!m_connection)
        return;
    m_root = firstScreen(m_connection.get())->root;
    m_activeWindow = atomNamed(m_connection.get(), "_NET_ACTIVE_WINDOW");
    const xcb_query_extension_reply_t* const test = xcb_get_extension_data(m_connection.get(), &xcb_test_id);
    m_hasTest = test && test->present;
}

xcb_window_t X11Screen::front() const
{
    if (!m_connection)
        return 0;
    if (const xcb_window_t active = numberIn(property(m_root, m_activeWindow, XCB_ATOM_WINDOW)); active != 0)
        return active;
    // Used without a window manager.
    const XcbReply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(m_connection.get(), xcb_get_input_focus(m_connection.get()), nullptr));
    return focus && focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT && focus->focus != m_root ? focus->focus : 0;
}

bool X11Screen::has(xcb_window_t window) const
{
    if (!m_connection || window == 0)
        return false;
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        m_connection.get(), xcb_get_window_attributes(m_connection.get(), window), nullptr));
    return attributes != nullptr;
}

void X11Screen::bringToFront(xcb_window_t window) const
{
    if (!m_connection)
        return;
    constexpr uint32_t asPager = 2;
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = m_activeWindow;
    message.data.data32[0] = asPager;
    xcb_send_event(m_connection.get(), 0, m_root,
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
        reinterpret_cast<const char*>(&message));
    if (numberIn(property(m_root, m_activeWindow, XCB_ATOM_WINDOW)) == 0)
        xcb_set_input_focus(m_connection.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    xcb_flush(m_connection.get());
}

QStringList X11Screen::classOf(xcb_window_t window) const
{
    QStringList names;
    for (const QByteArray& name : property(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING).split('\0'))
        if (!name.isEmpty())
            names.append(QString::fromLatin1(name).toLower());
    return names;
}

bool X11Screen::isModifierHeld() const
{
    if (!m_connection)
        return false;
    const XcbReply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(m_connection.get(), xcb_query_pointer(m_connection.get(), m_root), nullptr));
    constexpr uint16_t held = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
    return pointer && (pointer->mask & held) != 0;
}

bool X11Screen::press(const QList<xcb_keysym_t>& symbols) const
{
    QList<xcb_keycode_t> codes = codesOf(symbols);
    if (codes.isEmpty() || !m_hasTest)
        return false;
    const auto send = [this](uint8_t type, xcb_keycode_t code) {
        xcb_test_fake_input(m_connection.get(), type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    };
    for (const xcb_keycode_t code : std::as_const(codes))
        send(XCB_KEY_PRESS, code);
    std::ranges::reverse(codes);
    for (const xcb_keycode_t code : std::as_const(codes))
        send(XCB_KEY_RELEASE, code);
    xcb_flush(m_connection.get());
    return true;
}

QList<xcb_keycode_t> X11Screen::codesOf(const QList<xcb_keysym_t>& symbols) const
{
    if (!m_connection)
        return {};
    // Read each time, as the layout may have changed.
    const std::unique_ptr<xcb_key_symbols_t, void (*)(xcb_key_symbols_t*)> keyboard(
        xcb_key_symbols_alloc(m_connection.get()), xcb_key_symbols_free);
    QList<xcb_keycode_t> codes;
    for (const xcb_keysym_t symbol : symbols) {
        const XcbReply<xcb_keycode_t> found(xcb_key_symbols_get_keycode(keyboard.get(), symbol));
        if (!found || *found == XCB_NO_SYMBOL)
            return {};
        codes.append(*found);
    }
    return codes;
}

QByteArray X11Screen::property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const
{
    if (!m_connection || window == 0)
        return {};
    constexpr uint32_t words = 256;
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection.get(), xcb_get_property(m_connection.get(), 0, window, name, type, 0, words), nullptr));
    return reply ? QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                       xcb_get_property_value_length(reply.get()))
                 : QByteArray();
}

}
