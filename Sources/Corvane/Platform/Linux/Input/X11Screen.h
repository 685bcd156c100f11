#pragma once

#include "Platform/Linux/Input/Xcb.h"

#include <QList>
#include <QStringList>

namespace corvane {

/// The windows and the keyboard of an X server. Without a server, or once it is gone, there are none.
class X11Screen {
public:
    explicit X11Screen(const QByteArray& display);

    xcb_window_t front() const; ///< the active window; 0 for none
    bool has(xcb_window_t window) const;
    void bringToFront(xcb_window_t window) const;
    QStringList classOf(xcb_window_t window) const; ///< instance and class, in lower case

    bool isModifierHeld() const; ///< except for the locks
    bool canPress() const { return m_hasTest; }
    bool hasKey(xcb_keysym_t symbol) const { return !codesOf({ symbol }).isEmpty(); }

    /// Presses a key combination. False if a symbol is on no key.
    bool press(const QList<xcb_keysym_t>& symbols) const;

private:
    QList<xcb_keycode_t> codesOf(const QList<xcb_keysym_t>& symbols) const; ///< empty if one of them is on no key
    QByteArray property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const;

    XcbConnection m_connection;
    xcb_window_t m_root = 0;
    xcb_atom_t m_activeWindow = 0;
    bool m_hasTest = false;
};

}
