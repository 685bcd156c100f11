#pragma once

#include "Platform/Linux/Input/Xcb.h"

#include <QDeadlineTimer>
#include <QList>
#include <QObject>
#include <functional>

class QSocketNotifier;

namespace corvane {

/// The part of the clipboard that talks to the X server. Used on one thread with an event loop, and waits for other
/// programs there.
class X11ClipboardOwner final : public QObject {
    Q_OBJECT
public:
    explicit X11ClipboardOwner(const QByteArray& display);
    ~X11ClipboardOwner() override;

    bool lend(const QByteArray& selection, const QByteArray& text);
    void giveBack();
    void leave();

Q_SIGNALS:
    void taken();

private:
    /// The content of a selection in one format.
    struct Item {
        xcb_atom_t target = 0;
        xcb_atom_t type = 0;
        uint8_t format = 8;
        QByteArray bytes;
    };
    using Event = XcbReply<xcb_generic_event_t>;

    void start();
    QList<Item> itemsOf(xcb_atom_t selection);
    std::optional<Item> convert(xcb_atom_t selection, xcb_atom_t target, QDeadlineTimer& deadline);
    std::optional<Item> readProperty();
    bool readPieces(Item& item, QDeadlineTimer& deadline);
    Event await(QDeadlineTimer& deadline, const std::function<bool(const xcb_generic_event_t&)>& isWanted);
    bool own(xcb_atom_t selection);
    void restore();
    void read();
    void handle(const xcb_generic_event_t& event);
    void answer(const xcb_selection_request_event_t& request);
    void close();

    const QByteArray m_display;
    XcbConnection m_connection;
    std::unique_ptr<QSocketNotifier> m_notifier;
    xcb_window_t m_window = 0;
    xcb_atom_t m_property = 0;
    xcb_atom_t m_targets = 0;
    xcb_atom_t m_pieces = 0; ///< the type of incremental transfers, "INCR"
    xcb_atom_t m_selection = 0; ///< the owned selection, or 0
    QList<Item> m_items; ///< what it offers
    QList<Item> m_kept; ///< the content of the previous owner
    bool m_isLent = false; ///< it offers the text, not the saved content
};

}
