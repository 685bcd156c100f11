#pragma once

#include "Platform/Linux/Input/Xcb.h"
#include "Support/Await.h"

#include <QByteArray>
#include <QList>
#include <optional>

namespace corvane {

/// A window of another program, on a connection of its own.
class X11Window {
public:
    explicit X11Window(const QByteArray& display)
        : m_connection(connectToX(display))
        , root(firstScreen(m_connection.get())->root)
        , id(xcb_generate_id(m_connection.get()))
    {
        constexpr uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
        xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, id, root, 0, 0, 8, 8, 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
        xcb_map_window(m_connection.get(), id);
        settle();
    }

    xcb_connection_t* connection() const { return m_connection.get(); }
    xcb_atom_t atom(const QByteArray& name) const { return atomNamed(m_connection.get(), name); }

    /// Returns once the server has sent every program what earlier requests caused.
    void settle() const
    {
        for (int turns = 0; turns < 2; ++turns)
            (void)focus();
    }

    xcb_window_t focus() const
    {
        const XcbReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
        return reply->focus;
    }
    void takeFocus() const
    {
        xcb_set_input_focus(connection(), XCB_INPUT_FOCUS_PARENT, id, XCB_CURRENT_TIME);
        settle();
    }

    xcb_window_t ownerOf(const QByteArray& selection) const
    {
        const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
            connection(), xcb_get_selection_owner(connection(), atom(selection)), nullptr));
        return reply->owner;
    }
    void own(const QByteArray& selection, bool isOwner = true) const
    {
        xcb_set_selection_owner(connection(), isOwner ? id : XCB_NONE, atom(selection), XCB_CURRENT_TIME);
        settle();
    }

    /// The next event of that kind.
    XcbReply<xcb_generic_event_t> next(uint8_t type) const
    {
        constexpr uint8_t typeBits = 0x7f;
        XcbReply<xcb_generic_event_t> event;
        xcb_flush(connection());
        (void)await([&] {
            event.reset(xcb_poll_for_event(connection()));
            return event && (event->response_type & typeBits) == type;
        });
        return event;
    }

    void put(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, uint8_t format, const QByteArray& bytes) const
    {
        xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, window, property, type, format,
            uint32_t(bytes.size() / (format / 8)), bytes.constData());
        settle();
    }

    /// The selection in one form; nothing if its owner refuses.
    std::optional<QByteArray> read(const QByteArray& selection, const QByteArray& form) const
    {
        ask(selection, form);
        return answer();
    }
    void ask(const QByteArray& selection, const QByteArray& form) const
    {
        xcb_convert_selection(connection(), id, atom(selection), atom(form), atom("READ_HERE"), XCB_CURRENT_TIME);
        settle();
    }
    std::optional<QByteArray> answer() const
    {
        const auto event = next(XCB_SELECTION_NOTIFY);
        if (!event || reinterpret_cast<const xcb_selection_notify_event_t&>(*event).property == XCB_NONE)
            return std::nullopt;
        const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(),
            xcb_get_property(connection(), 1, id, atom("READ_HERE"), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024), nullptr));
        return QByteArray(
            static_cast<const char*>(xcb_get_property_value(reply.get())), xcb_get_property_value_length(reply.get()));
    }

private:
    XcbConnection m_connection;

public:
    const xcb_window_t root;
    const xcb_window_t id;
};

}
