#include "Platform/Linux/Input/X11ClipboardOwner.h"
#include "Platform/Linux/Input/X11Screen.h"
#include "Platform/Linux/Input/X11TextInsertion.h"

#include "Support/PrivateBus.h"
#include "Support/VirtualScheduler.h"
#include "X11Window.h"
#include "XServer.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <cstring>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

/// A program that offers a text on the clipboard and hands it over in pieces.
class PieceByPiece : public X11Window {
public:
    PieceByPiece(const QByteArray& display, const QByteArrayList& pieces)
        : X11Window(display)
        , m_pieces(pieces)
        , m_notifier(xcb_get_file_descriptor(connection()), QSocketNotifier::Read)
    {
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { serve(); });
        own("CLIPBOARD");
    }

    QByteArrayList asked;

private:
    void serve()
    {
        constexpr uint8_t typeBits = 0x7f;
        while (const XcbReply<xcb_generic_event_t> event { xcb_poll_for_event(connection()) }) {
            const uint8_t type = event->response_type & typeBits;
            if (type == XCB_SELECTION_REQUEST)
                answer(reinterpret_cast<const xcb_selection_request_event_t&>(*event));
            else if (type == XCB_PROPERTY_NOTIFY)
                onProperty(reinterpret_cast<const xcb_property_notify_event_t&>(*event));
        }
        xcb_flush(connection());
    }

    void answer(const xcb_selection_request_event_t& request)
    {
        const QByteArrayList forms { "TARGETS", "SAVE_TARGETS", "text/refused", "UTF8_STRING" };
        QByteArray atoms;
        for (const QByteArray& form : forms) {
            const xcb_atom_t one = atom(form);
            atoms.append(reinterpret_cast<const char*>(&one), sizeof one);
            if (one == request.target)
                asked.append(form);
        }
        xcb_selection_notify_event_t reply {};
        reply.response_type = XCB_SELECTION_NOTIFY;
        reply.requestor = request.requestor;
        reply.selection = request.selection;
        reply.target = request.target;
        reply.property = request.property;
        if (request.target == atom("TARGETS")) {
            put(request.requestor, request.property, XCB_ATOM_ATOM, 32, atoms);
        } else if (request.target == atom("UTF8_STRING")) {
            constexpr uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
            xcb_change_window_attributes(connection(), request.requestor, XCB_CW_EVENT_MASK, &events);
            put(request.requestor, request.property, atom("INCR"), 32, QByteArray(4, '\0'));
            m_property = request.property;
        } else {
            reply.property = XCB_NONE;
        }
        xcb_send_event(
            connection(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&reply));
    }

    void onProperty(const xcb_property_notify_event_t& event)
    {
        if (event.atom != m_property || event.state != XCB_PROPERTY_DELETE)
            return;
        put(event.window, event.atom, atom("UTF8_STRING"), 8, m_pieces.isEmpty() ? QByteArray() : m_pieces.takeFirst());
    }

    QByteArrayList m_pieces;
    QSocketNotifier m_notifier;
    xcb_atom_t m_property = 0;
};

class X11Test : public testing::Test {
protected:
    XServer server;
};

}

TEST_F(X11Test, whatIsLentIsMarkedAsSecretUntilItIsLeft)
{
    X11ClipboardOwner owner(server.display);
    int taken = 0;
    QObject::connect(&owner, &X11ClipboardOwner::taken, &owner, [&] { ++taken; });
    const X11Window other(server.display);
    owner.giveBack(); // nothing was lent
    owner.leave();
    ASSERT_TRUE(owner.lend("CLIPBOARD", "Grüße"));
    EXPECT_EQ(other.read("CLIPBOARD", "TARGETS").value_or("").size(), 6 * 4);
    EXPECT_EQ(taken, 0) << "a list is not the text";
    EXPECT_EQ(other.read("CLIPBOARD", "UTF8_STRING"), "Grüße");
    EXPECT_EQ(other.read("CLIPBOARD", "text/plain;charset=utf-8"), "Grüße");
    EXPECT_EQ(other.read("CLIPBOARD", "STRING"),
        "Gr\xfc\xdf"
        "e");
    EXPECT_EQ(other.read("CLIPBOARD", "x-kde-passwordManagerHint"), "secret");
    EXPECT_EQ(taken, 4);
    EXPECT_FALSE(other.read("CLIPBOARD", "image/png"));
    EXPECT_FALSE(other.read("PRIMARY", "UTF8_STRING"));

    owner.leave();
    EXPECT_EQ(other.read("CLIPBOARD", "UTF8_STRING"), "Grüße");
    EXPECT_FALSE(other.read("CLIPBOARD", "x-kde-passwordManagerHint"));
    EXPECT_EQ(taken, 4) << "it is nobody's turn any more";
    owner.giveBack();
    EXPECT_EQ(other.read("CLIPBOARD", "UTF8_STRING"), "Grüße") << "what was left is not taken back";

    ASSERT_TRUE(owner.lend("CLIPBOARD", "second"));
    ASSERT_TRUE(owner.lend("CLIPBOARD", "third"));
    EXPECT_EQ(other.read("CLIPBOARD", "text/plain"), "third");
    other.ask("CLIPBOARD", "UTF8_STRING");
    owner.giveBack();
    EXPECT_EQ(other.answer(), "Grüße") << "not the text between, and who asked meanwhile is answered";
    EXPECT_FALSE(X11ClipboardOwner(":no display").lend("CLIPBOARD", "x"));
}

TEST_F(X11Test, aClipboardThatWasEmptyOrIsTakenOverIsLeftAlone)
{
    X11ClipboardOwner owner(server.display);
    const X11Window other(server.display);
    ASSERT_TRUE(owner.lend("CLIPBOARD", "text"));
    EXPECT_NE(other.ownerOf("CLIPBOARD"), XCB_NONE);
    owner.giveBack();
    EXPECT_TRUE(await([&] { return other.ownerOf("CLIPBOARD") == XCB_NONE; })) << "it held nothing";

    ASSERT_TRUE(owner.lend("CLIPBOARD", "text"));
    other.own("CLIPBOARD");
    QCoreApplication::processEvents();
    owner.leave();
    owner.giveBack();
    other.settle();
    EXPECT_EQ(other.ownerOf("CLIPBOARD"), other.id);
    other.own("CLIPBOARD", false);
    ASSERT_TRUE(owner.lend("CLIPBOARD", "again"));
    EXPECT_EQ(other.read("CLIPBOARD", "UTF8_STRING"), "again");
}

TEST_F(X11Test, whatComesInPiecesIsGivenBackWhole)
{
    VirtualScheduler scheduler;
    X11TextInsertion insertion(scheduler, noBus(), server.display);
    const X11Window target(server.display);
    target.takeFocus();
    PieceByPiece held(server.display, { "one, ", "two, ", "three" });
    insertion.aim();
    std::optional<InsertionOutcome> outcome;
    insertion.insert("text", [&](InsertionOutcome given) { outcome = given; });
    scheduler.advance(Milliseconds(120));
    ASSERT_TRUE(target.next(XCB_KEY_PRESS));
    EXPECT_EQ(held.asked, QByteArrayList({ "TARGETS", "text/refused", "UTF8_STRING" }));
    EXPECT_EQ(target.read("CLIPBOARD", "UTF8_STRING"), "text");
    EXPECT_TRUE(await([&] { return outcome == InsertionOutcome::Inserted; }));
    scheduler.advance(Milliseconds(300));
    EXPECT_TRUE(await([&] { return target.read("CLIPBOARD", "UTF8_STRING") == "one, two, three"; }));
    EXPECT_FALSE(target.read("CLIPBOARD", "x-kde-passwordManagerHint"));
}

TEST_F(X11Test, terminalsArePastedIntoTheirWay)
{
    constexpr xcb_keycode_t insertKey = 118;
    struct Case {
        QByteArray name;
        QByteArray selection;
        QList<xcb_keycode_t> keys;
    };
    const QByteArray both("any\0XTerm\0", 10);
    for (const Case& each :
        { Case { both, "PRIMARY", { shift, insertKey } }, Case { "Konsole", "CLIPBOARD", { control, shift, letterV } },
            Case { "Editor", "CLIPBOARD", { control, letterV } } }) {
        VirtualScheduler scheduler;
        X11TextInsertion insertion(scheduler, noBus(), server.display);
        const X11Window terminal(server.display);
        terminal.put(terminal.id, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, each.name);
        terminal.takeFocus();
        insertion.aim();
        std::optional<InsertionOutcome> outcome;
        insertion.insert("text", [&](InsertionOutcome given) { outcome = given; });
        scheduler.advance(Milliseconds(120));
        QList<xcb_keycode_t> pressed;
        QList<xcb_keycode_t> released;
        const auto codeOf = [](const XcbReply<xcb_generic_event_t>& event) {
            return event ? reinterpret_cast<const xcb_key_press_event_t&>(*event).detail : xcb_keycode_t(0);
        };
        for (qsizetype i = 0; i < each.keys.size(); ++i)
            pressed.append(codeOf(terminal.next(XCB_KEY_PRESS)));
        for (qsizetype i = 0; i < each.keys.size(); ++i)
            released.prepend(codeOf(terminal.next(XCB_KEY_RELEASE)));
        EXPECT_EQ(pressed, each.keys) << each.name.toStdString();
        EXPECT_EQ(released, each.keys) << "in the opposite order";
        EXPECT_EQ(terminal.ownerOf(each.selection == "PRIMARY" ? "CLIPBOARD" : "PRIMARY"), XCB_NONE);
        ASSERT_TRUE(await([&] { return scheduler.pendingTimers() == 1; }));
        scheduler.advance(Milliseconds(1000)); // nobody asked for the text
        EXPECT_TRUE(await([&] { return outcome.has_value(); }));
        EXPECT_EQ(outcome, InsertionOutcome::Copied);
        EXPECT_EQ(terminal.read("CLIPBOARD", "UTF8_STRING"), "text") << each.name.toStdString();
        EXPECT_TRUE(await([&] { return terminal.ownerOf("PRIMARY") == XCB_NONE; })) << each.name.toStdString();
    }
}

TEST_F(X11Test, theWindowInFrontIsTheManagersOrTheOneWithTheFocus)
{
    const X11Screen screen(server.display);
    EXPECT_EQ(screen.front(), 0U) << "no window has the focus";
    const X11Window first(server.display);
    const X11Window second(server.display);
    second.takeFocus();
    EXPECT_EQ(screen.front(), second.id);
    EXPECT_TRUE(screen.has(first.id));
    EXPECT_FALSE(screen.has(0));
    EXPECT_FALSE(screen.has(first.id + 1));
    screen.bringToFront(first.id);
    EXPECT_EQ(screen.front(), first.id);
    first.put(first.id, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, QByteArray("Instance\0Class\0", 15));
    EXPECT_EQ(screen.classOf(first.id), QStringList({ "instance", "class" }));
    EXPECT_EQ(screen.classOf(second.id), QStringList());

    // With a window manager.
    const auto active = [&](xcb_window_t window) {
        second.put(second.root, second.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 32,
            QByteArray(reinterpret_cast<const char*>(&window), sizeof window));
    };
    active(second.id);
    EXPECT_EQ(screen.front(), second.id);
    constexpr uint32_t asManager = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(second.connection(), second.root, XCB_CW_EVENT_MASK, &asManager);
    second.settle();
    second.takeFocus();
    screen.bringToFront(first.id);
    const auto event = second.next(XCB_CLIENT_MESSAGE);
    ASSERT_TRUE(event);
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
    EXPECT_EQ(message.window, first.id);
    EXPECT_EQ(message.type, second.atom("_NET_ACTIVE_WINDOW"));
    EXPECT_EQ(message.format, 32);
    EXPECT_EQ(message.data.data32[0], 2U);
    EXPECT_EQ(second.focus(), second.id) << "the manager decides";
    active(0);
    EXPECT_EQ(screen.front(), second.id);

    EXPECT_FALSE(screen.isModifierHeld());
    server.hold(control);
    EXPECT_TRUE(screen.isModifierHeld());
    server.letGo(control);
    EXPECT_TRUE(screen.hasKey('v'));
    EXPECT_FALSE(screen.hasKey(0xffe0));
    EXPECT_FALSE(screen.press({ 'v', 0xffe0 }));
    const X11Screen none(":no display");
    EXPECT_EQ(none.front(), 0U);
    EXPECT_FALSE(
        none.has(first.id) || none.isModifierHeld() || none.canPress() || none.hasKey('v') || none.press({ 'v' }));
}
