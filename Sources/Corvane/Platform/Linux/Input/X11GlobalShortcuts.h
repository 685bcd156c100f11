#pragma once

#include "Platform/GlobalShortcuts.h"
#include "Platform/Linux/Input/Xcb.h"

#include <QHash>

class QSocketNotifier;
struct _XCBKeySymbols;

namespace corvane {

/// A key with its modifiers, as X11 key codes.
struct XKey {
    uint32_t symbol = 0;
    uint16_t modifiers = 0;

    bool operator==(const XKey&) const = default;
};

/// Nothing unless it is exactly one key with a symbol on this keyboard.
std::optional<XKey> xKeyOf(const QString& keys);

/// Passive grabs on the root window, on its own connection: works without a window and without Qt's platform plugin.
/// NumLock and CapsLock are ignored. When the X server exits, every shortcut is unavailable.
class X11GlobalShortcuts final : public GlobalShortcuts {
public:
    explicit X11GlobalShortcuts(const QByteArray& display = {}); ///< empty: from the environment
    ~X11GlobalShortcuts() override;

    void bind(const GlobalShortcut& shortcut) override;
    void release(const QString& id) override;
    GlobalShortcutState state(const QString& id) const override;

private:
    struct Grab {
        GlobalShortcut shortcut;
        GlobalShortcutState state;
        XKey key;
        QList<xcb_keycode_t> codes; ///< several keys may produce a symbol
        bool isDown = false;
    };

    void read();
    void handle(const xcb_generic_event_t& event);
    void handleKey(const xcb_key_press_event_t& event, bool isPress);
    void grabFirstFree(Grab& grab);
    bool grabKey(const XKey& key, const QList<xcb_keycode_t>& codes);
    void ungrabKey(const XKey& key, const QList<xcb_keycode_t>& codes);
    QList<xcb_keycode_t> codesOf(const XKey& key) const;
    void grabAgain(); ///< after a change of the keyboard layout
    void loseServer();

    XcbConnection m_connection;
    std::unique_ptr<_XCBKeySymbols, void (*)(_XCBKeySymbols*)> m_symbols;
    std::unique_ptr<QSocketNotifier> m_notifier;
    xcb_window_t m_root = 0;
    uint8_t m_layoutEvent = XCB_MAPPING_NOTIFY;
    QHash<QString, Grab> m_grabs;
};

}
