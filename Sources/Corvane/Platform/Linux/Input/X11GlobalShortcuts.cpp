#include "Platform/Linux/Input/X11GlobalShortcuts.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"

#include <QKeySequence>
#include <QSocketNotifier>
#include <array>
#include <xcb/xcb_keysyms.h>
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wkeyword-macro"
#define explicit explicit_ // a keyword of C++ that the header uses as a name
#include <xcb/xkb.h>
#undef explicit
#pragma clang diagnostic pop

namespace corvane {

namespace {

constexpr uint16_t anyCapsLock = XCB_MOD_MASK_LOCK;
constexpr uint16_t anyNumLock = XCB_MOD_MASK_2;
constexpr std::array<uint16_t, 4> locks { 0, anyCapsLock, anyNumLock, anyCapsLock | anyNumLock };
constexpr uint16_t heldModifiers
    = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4; // Alt is 1, the logo key 4

// From X11/keysymdef.h, which defines a macro for each of its 2,000 keys.
const QHash<int, uint32_t> namedKeys { { Qt::Key_Escape, 0xff1b }, { Qt::Key_Return, 0xff0d }, { Qt::Key_Tab, 0xff09 },
    { Qt::Key_Backspace, 0xff08 }, { Qt::Key_Pause, 0xff13 }, { Qt::Key_Insert, 0xff63 }, { Qt::Key_Delete, 0xffff },
    { Qt::Key_Home, 0xff50 }, { Qt::Key_Left, 0xff51 }, { Qt::Key_Up, 0xff52 }, { Qt::Key_Right, 0xff53 },
    { Qt::Key_Down, 0xff54 }, { Qt::Key_PageUp, 0xff55 }, { Qt::Key_PageDown, 0xff56 }, { Qt::Key_End, 0xff57 },
    { Qt::Key_Menu, 0xff67 }, { Qt::Key_Print, 0xff61 }, { Qt::Key_ScrollLock, 0xff14 } };
constexpr uint32_t firstFunctionKey = 0xffbe;

uint32_t symbolOf(int key)
{
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return uint32_t(key - Qt::Key_A + 'a');
    if (key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde)
        return uint32_t(key);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return firstFunctionKey + uint32_t(key - Qt::Key_F1);
    return namedKeys.value(key, 0);
}

/// Asks for key repeat without release events, and for changes of the layout. Returns the type of the event that tells
/// of one.
uint8_t prepareKeyboard(xcb_connection_t* connection)
{
    constexpr uint16_t major = 1;
    const XcbReply<xcb_xkb_use_extension_reply_t> used(
        xcb_xkb_use_extension_reply(connection, xcb_xkb_use_extension(connection, major, 0), nullptr));
    if (!used || !used->supported)
        return XCB_MAPPING_NOTIFY;
    constexpr uint32_t repeat = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const auto asked = xcb_xkb_per_client_flags(connection, XCB_XKB_ID_USE_CORE_KBD, repeat, repeat, 0, 0, 0);
    const XcbReply<xcb_xkb_per_client_flags_reply_t> reply(xcb_xkb_per_client_flags_reply(connection, asked, nullptr));
    // The server sends no MappingNotify to a client of the extension.
    constexpr uint16_t layout = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr uint16_t parts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS;
    xcb_xkb_select_events(connection, XCB_XKB_ID_USE_CORE_KBD, layout, 0, layout, parts, parts, nullptr);
    return xcb_get_extension_data(connection, &xcb_xkb_id)->first_event;
}

}

std::optional<XKey> xKeyOf(const QString& keys)
{
    const QKeySequence sequence(keys, QKeySequence::PortableText);
    if (sequence.count() != 1)
        return std::nullopt;
    XKey key;
    key.symbol = symbolOf(sequence[0].key());
    const Qt::KeyboardModifiers held = sequence[0].keyboardModifiers();
    if (held & Qt::ShiftModifier)
        key.modifiers |= XCB_MOD_MASK_SHIFT;
    if (held & Qt::ControlModifier)
        key.modifiers |= XCB_MOD_MASK_CONTROL;
    if (held & Qt::AltModifier)
        key.modifiers |= XCB_MOD_MASK_1;
    if (held & Qt::MetaModifier)
        key.modifiers |= XCB_MOD_MASK_4;
    return key.symbol == 0 ? std::nullopt : std::optional(key);
}

X11GlobalShortcuts::X11GlobalShortcuts(const QByteArray& display)
    : m_symbols(nullptr, xcb_key_symbols_free)
{
    m_connection = connectToX(display);
    if (!m_connection) {
        log(u"GlobalShortcuts: no X server"_s);
        return;
    }
    m_root = firstScreen(m_connection.get())->root;
    m_symbols.reset(xcb_key_symbols_alloc(m_connection.get()));
    m_layoutEvent = prepareKeyboard(m_connection.get());
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection.get()), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11GlobalShortcuts::read);
}

X11GlobalShortcuts::~X11GlobalShortcuts() = default;

void X11GlobalShortcuts::bind(const GlobalShortcut& shortcut)
{
    release(shortcut.id);
    Grab& grab = m_grabs[shortcut.id];
    grab.shortcut = shortcut;
    grabFirstFree(grab);
    Q_EMIT stateChanged(shortcut.id);
    read(); // events read together with answers raise no notification
}

void X11GlobalShortcuts::release(const QString& id)
{
    const auto found = m_grabs.constFind(id);
    if (found == m_grabs.constEnd())
        return;
    if (found->state.kind == GlobalShortcutState::Kind::Bound)
        ungrabKey(found->key, found->codes);
    m_grabs.erase(found);
    Q_EMIT stateChanged(id);
}

GlobalShortcutState X11GlobalShortcuts::state(const QString& id) const
{
    return m_grabs.value(id).state;
}

void X11GlobalShortcuts::grabFirstFree(Grab& grab)
{
    using Kind = GlobalShortcutState::Kind;
    grab.state = { Kind::Unavailable };
    grab.isDown = false;
    for (const QString& keys : std::as_const(grab.shortcut.keys)) {
        const auto key = m_connection ? xKeyOf(keys) : std::nullopt;
        const QList<xcb_keycode_t> codes = key ? codesOf(*key) : QList<xcb_keycode_t>();
        if (codes.isEmpty())
            continue;
        if (grabKey(*key, codes)) {
            grab.key = *key;
            grab.codes = codes;
            grab.state = { Kind::Bound, keys };
            return;
        }
        if (grab.state.kind != Kind::Taken)
            grab.state = { Kind::Taken, keys };
    }
}

QList<xcb_keycode_t> X11GlobalShortcuts::codesOf(const XKey& key) const
{
    QList<xcb_keycode_t> codes;
    const XcbReply<xcb_keycode_t> found(xcb_key_symbols_get_keycode(m_symbols.get(), key.symbol));
    for (const xcb_keycode_t* code = found.get(); code && *code != XCB_NO_SYMBOL; ++code)
        codes.append(*code);
    return codes;
}

bool X11GlobalShortcuts::grabKey(const XKey& key, const QList<xcb_keycode_t>& codes)
{
    QList<xcb_void_cookie_t> asked;
    for (const xcb_keycode_t code : codes)
        for (const uint16_t lock : locks)
            asked.append(xcb_grab_key_checked(
                m_connection.get(), 1, m_root, key.modifiers | lock, code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    bool isFree = true;
    for (const xcb_void_cookie_t cookie : std::as_const(asked))
        isFree = !XcbReply<xcb_generic_error_t>(xcb_request_check(m_connection.get(), cookie)) && isFree;
    if (!isFree)
        ungrabKey(key, codes);
    return isFree;
}

void X11GlobalShortcuts::ungrabKey(const XKey& key, const QList<xcb_keycode_t>& codes)
{
    for (const xcb_keycode_t code : codes)
        for (const uint16_t lock : locks)
            xcb_ungrab_key(m_connection.get(), code, m_root, key.modifiers | lock);
    xcb_flush(m_connection.get());
}

void X11GlobalShortcuts::read()
{
    if (!m_connection)
        return;
    while (const XcbReply<xcb_generic_event_t> event { xcb_poll_for_event(m_connection.get()) })
        handle(*event);
    if (xcb_connection_has_error(m_connection.get()) != 0)
        loseServer();
}

void X11GlobalShortcuts::handle(const xcb_generic_event_t& event)
{
    constexpr uint8_t typeBits = 0x7f;
    const uint8_t type = event.response_type & typeBits;
    if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) {
        handleKey(reinterpret_cast<const xcb_key_press_event_t&>(event), type == XCB_KEY_PRESS);
    } else if (type == m_layoutEvent) {
        m_symbols.reset(xcb_key_symbols_alloc(m_connection.get()));
        grabAgain();
    }
}

void X11GlobalShortcuts::handleKey(const xcb_key_press_event_t& event, bool isPress)
{
    for (Grab& grab : m_grabs) {
        const bool isHeld = (event.state & heldModifiers) == grab.key.modifiers;
        if (!grab.codes.contains(event.detail) || grab.isDown == isPress || (isPress && !isHeld))
            continue;
        grab.isDown = isPress;
        const QString id = grab.shortcut.id; // a receiver may bind and release shortcuts
        if (isPress)
            Q_EMIT pressed(id);
        else
            Q_EMIT released(id);
        return;
    }
}

void X11GlobalShortcuts::grabAgain()
{
    // All keys that moved are freed first, as another shortcut may take their place.
    QList<Grab*> moved;
    for (Grab& grab : m_grabs) {
        const bool isBound = grab.state.kind == GlobalShortcutState::Kind::Bound;
        if (isBound && codesOf(grab.key) == grab.codes)
            continue;
        if (isBound)
            ungrabKey(grab.key, grab.codes);
        moved.append(&grab);
    }
    QStringList changed;
    for (Grab* const grab : std::as_const(moved)) {
        const GlobalShortcutState before = grab->state;
        grabFirstFree(*grab);
        if (grab->state != before)
            changed.append(grab->shortcut.id);
    }
    for (const QString& id : std::as_const(changed))
        Q_EMIT stateChanged(id);
}

void X11GlobalShortcuts::loseServer()
{
    log(u"GlobalShortcuts: the X server is gone"_s);
    m_notifier.reset();
    m_connection.reset();
    for (Grab& grab : m_grabs)
        grab.state = { GlobalShortcutState::Kind::Unavailable };
    const QStringList lost = m_grabs.keys();
    for (const QString& id : lost)
        Q_EMIT stateChanged(id);
}

}
