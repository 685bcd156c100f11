#include "Platform/Linux/Input/X11ClipboardOwner.h"

#include <QSocketNotifier>
#include <cstring>
#include <poll.h>

namespace corvane {

namespace {

constexpr int silenceMs = 1000; ///< after which the owner counts as hung
constexpr int readMs = 10'000; ///< for everything
constexpr qsizetype largestKept = 64 << 20;
constexpr qsizetype requestHead = 64;
constexpr uint8_t typeBits = 0x7f;

// Targets that describe the selection or act on its owner: there is no content to save.
const QList<QByteArray> noContent { "TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS", "DELETE", "INSERT_SELECTION",
    "INSERT_PROPERTY" };
const QList<QByteArray> textForms { "UTF8_STRING", "text/plain;charset=utf-8", "text/plain", "STRING" };

template <typename Kind> const Kind& as(const xcb_generic_event_t& event)
{
    return reinterpret_cast<const Kind&>(event);
}

uint8_t typeOf(const xcb_generic_event_t& event)
{
    return event.response_type & typeBits;
}

}

X11ClipboardOwner::X11ClipboardOwner(const QByteArray& display)
    : m_display(display)
{
}

X11ClipboardOwner::~X11ClipboardOwner() = default;

/// Connects for the first text, and again after the server exited.
void X11ClipboardOwner::start()
{
    if (m_connection)
        return;
    m_connection = connectToX(m_display);
    if (!m_connection)
        return;
    xcb_connection_t* const x = m_connection.get();
    const xcb_screen_t* const screen = firstScreen(x);
    m_window = xcb_generate_id(x);
    constexpr uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(x, XCB_COPY_FROM_PARENT, m_window, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        screen->root_visual, XCB_CW_EVENT_MASK, &events);
    m_property = atomNamed(x, "CORVANE_SELECTION");
    m_targets = atomNamed(x, "TARGETS");
    m_pieces = atomNamed(x, "INCR");
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(x), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11ClipboardOwner::read);
}

bool X11ClipboardOwner::lend(const QByteArray& selection, const QByteArray& text)
{
    start();
    if (!m_connection)
        return false;
    restore();
    const xcb_atom_t atom = atomNamed(m_connection.get(), selection);
    m_kept = m_selection == atom ? m_items : itemsOf(atom);
    m_items.clear();
    for (const QByteArray& form : textForms) {
        const xcb_atom_t target = atomNamed(m_connection.get(), form);
        m_items.append({ target, target, 8, form == "STRING" ? QString::fromUtf8(text).toLatin1() : text });
    }
    // Clipboard managers skip content with this mark.
    const xcb_atom_t hint = atomNamed(m_connection.get(), "x-kde-passwordManagerHint");
    m_items.append({ hint, hint, 8, "secret" });
    m_isLent = own(atom);
    read(); // events read together with answers raise no notification
    return m_isLent;
}

void X11ClipboardOwner::giveBack()
{
    if (!m_connection)
        return;
    restore();
    read(); // as in `lend`
}

void X11ClipboardOwner::restore()
{
    if (!std::exchange(m_isLent, false) || m_selection == 0)
        return;
    m_items = std::exchange(m_kept, {});
    if (!m_items.isEmpty()) {
        own(m_selection); // again, so that clipboard managers notice it
    } else {
        xcb_set_selection_owner(m_connection.get(), XCB_NONE, m_selection, XCB_CURRENT_TIME);
        m_selection = 0;
    }
    xcb_flush(m_connection.get());
}

void X11ClipboardOwner::leave()
{
    if (std::exchange(m_isLent, false))
        m_items.removeLast(); // the text now stays
    m_kept.clear();
}

bool X11ClipboardOwner::own(xcb_atom_t selection)
{
    xcb_connection_t* const x = m_connection.get();
    xcb_set_selection_owner(x, m_window, selection, XCB_CURRENT_TIME);
    const XcbReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, selection), nullptr));
    m_selection = reply && reply->owner == m_window ? selection : xcb_atom_t(0);
    return m_selection != 0;
}

QList<X11ClipboardOwner::Item> X11ClipboardOwner::itemsOf(xcb_atom_t selection)
{
    QDeadlineTimer deadline(readMs);
    const auto targets = convert(selection, m_targets, deadline);
    if (!targets)
        return {};
    QList<xcb_atom_t> forms(targets->bytes.size() / qsizetype(sizeof(xcb_atom_t)));
    std::memcpy(forms.data(), targets->bytes.constData(), size_t(forms.size()) * sizeof(xcb_atom_t));
    for (const QByteArray& name : noContent)
        forms.removeAll(atomNamed(m_connection.get(), name));
    const qsizetype largest = qsizetype(xcb_get_maximum_request_length(m_connection.get())) * 4 - requestHead;
    QList<Item> items;
    qsizetype size = 0;
    for (const xcb_atom_t form : std::as_const(forms)) {
        const auto item = convert(selection, form, deadline);
        if (deadline.hasExpired())
            break;
        if (!item || item->bytes.size() > largest || size + item->bytes.size() > largestKept)
            continue;
        size += item->bytes.size();
        items.append(*item);
    }
    return items;
}

std::optional<X11ClipboardOwner::Item> X11ClipboardOwner::convert(
    xcb_atom_t selection, xcb_atom_t target, QDeadlineTimer& deadline)
{
    xcb_connection_t* const x = m_connection.get();
    xcb_delete_property(x, m_window, m_property);
    xcb_convert_selection(x, m_window, selection, target, m_property, XCB_CURRENT_TIME);
    const Event event = await(deadline, [&](const xcb_generic_event_t& each) {
        return typeOf(each) == XCB_SELECTION_NOTIFY && as<xcb_selection_notify_event_t>(each).target == target;
    });
    if (!event || as<xcb_selection_notify_event_t>(*event).property == XCB_NONE)
        return std::nullopt;
    std::optional<Item> item = readProperty();
    if (item && item->type == m_pieces && !readPieces(*item, deadline))
        return std::nullopt;
    if (item)
        item->target = target;
    return item;
}

/// Deleting the property asks the owner for the next piece.
std::optional<X11ClipboardOwner::Item> X11ClipboardOwner::readProperty()
{
    constexpr uint32_t words = largestKept / 4;
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection.get(),
        xcb_get_property(m_connection.get(), 1, m_window, m_property, XCB_GET_PROPERTY_TYPE_ANY, 0, words), nullptr));
    if (!reply || reply->type == XCB_NONE)
        return std::nullopt;
    return Item { 0, reply->type, reply->format,
        QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())) };
}

bool X11ClipboardOwner::readPieces(Item& item, QDeadlineTimer& deadline)
{
    item.bytes.clear();
    while (item.bytes.size() <= largestKept) {
        const Event event = await(deadline, [&](const xcb_generic_event_t& each) {
            return typeOf(each) == XCB_PROPERTY_NOTIFY && as<xcb_property_notify_event_t>(each).atom == m_property
                && as<xcb_property_notify_event_t>(each).state == XCB_PROPERTY_NEW_VALUE;
        });
        const auto piece = event ? readProperty() : std::nullopt;
        if (!piece)
            return false;
        item.type = piece->type;
        item.format = piece->format;
        if (piece->bytes.isEmpty())
            return true;
        item.bytes += piece->bytes;
    }
    return false;
}

/// Handles other events in the meantime. Null on a timeout, which ends the deadline, or if the connection ends.
X11ClipboardOwner::Event X11ClipboardOwner::await(
    QDeadlineTimer& deadline, const std::function<bool(const xcb_generic_event_t&)>& isWanted)
{
    xcb_flush(m_connection.get());
    for (;;) {
        while (Event event { xcb_poll_for_event(m_connection.get()) }) {
            if (isWanted(*event))
                return event;
            handle(*event);
        }
        pollfd waiting { xcb_get_file_descriptor(m_connection.get()), POLLIN, 0 };
        if (xcb_connection_has_error(m_connection.get()) != 0 || deadline.hasExpired())
            return nullptr;
        if (::poll(&waiting, 1, int(std::min<qint64>(silenceMs, deadline.remainingTime()))) <= 0) {
            deadline.setRemainingTime(0);
            return nullptr;
        }
    }
}

void X11ClipboardOwner::read()
{
    while (const Event event { xcb_poll_for_event(m_connection.get()) })
        handle(*event);
    if (xcb_connection_has_error(m_connection.get()) != 0)
        close();
}

void X11ClipboardOwner::handle(const xcb_generic_event_t& event)
{
    if (typeOf(event) == XCB_SELECTION_REQUEST) {
        answer(as<xcb_selection_request_event_t>(event));
    } else if (typeOf(event) == XCB_SELECTION_CLEAR
        && as<xcb_selection_clear_event_t>(event).selection == m_selection) {
        m_selection = 0;
        m_isLent = false;
        m_items.clear();
        m_kept.clear();
    }
}

void X11ClipboardOwner::answer(const xcb_selection_request_event_t& request)
{
    xcb_connection_t* const x = m_connection.get();
    xcb_selection_notify_event_t reply {};
    reply.response_type = XCB_SELECTION_NOTIFY;
    reply.time = request.time;
    reply.requestor = request.requestor;
    reply.selection = request.selection;
    reply.target = request.target;
    const xcb_atom_t property = request.property == XCB_NONE ? request.target : request.property;
    const auto give = [&](xcb_atom_t type, uint8_t format, const QByteArray& bytes) {
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, request.requestor, property, type, format,
            uint32_t(bytes.size() / (format / 8)), bytes.constData());
        reply.property = property;
    };
    bool isText = false;
    if (request.selection != m_selection) {
        reply.property = XCB_NONE;
    } else if (request.target == m_targets) {
        QByteArray forms(reinterpret_cast<const char*>(&m_targets), sizeof m_targets);
        for (const Item& item : std::as_const(m_items))
            forms.append(reinterpret_cast<const char*>(&item.target), sizeof item.target);
        give(XCB_ATOM_ATOM, 32, forms);
    } else {
        for (const Item& item : std::as_const(m_items)) {
            if (item.target == request.target && reply.property == XCB_NONE) {
                give(item.type, item.format, item.bytes);
                isText = m_isLent;
            }
        }
    }
    xcb_send_event(x, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&reply));
    xcb_flush(x);
    if (isText)
        Q_EMIT taken();
}

void X11ClipboardOwner::close()
{
    m_notifier->setEnabled(false);
    m_notifier.release()->deleteLater(); // this may run inside its signal
    m_connection.reset();
    m_selection = 0;
    m_isLent = false;
    m_items.clear();
    m_kept.clear();
}

}
