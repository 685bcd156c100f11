#include "Inbox/InboxCommands.h"

#include "Inbox/InboxView.h"

namespace corvane {

using namespace Qt::StringLiterals;

QList<Command> inboxCommands(InboxView& inbox)
{
    const CommandPlace list { u"In the list"_s, 0 };
    const CommandPlace thread { u"This conversation"_s, 2 };
    const CommandPlace message { u"On a message"_s, 2 };
    const auto somebodyIsOpen = [&inbox] {
        return !inbox.person()->selectedId().isEmpty();
    };
    return {
        { u"next"_s, u"Next conversation"_s, u"Down or J"_s, { u"J"_s }, list },
        { u"previous"_s, u"Previous conversation"_s, u"Up or K"_s, { u"K"_s }, list },
        { u"open"_s, u"Open the thread"_s, u"Return"_s, {}, list },
        { u"check"_s, u"Pick for a common action"_s, u"Space"_s, {}, list },
        { u"checkAll"_s, u"Pick all"_s, u"Ctrl+A"_s, { u"Ctrl+A"_s }, list },
        { u"reply"_s, u"Reply"_s, u"R"_s, { u"R"_s }, thread },
        { u"send"_s, u"Send what is typed"_s, u"Ctrl+Return"_s, {}, thread },
        { u"assistant"_s, u"Ask the assistant"_s, u"Ctrl+J"_s, { u"Ctrl+J"_s }, thread },
        { u"dictate"_s, u"Dictate, or insert what was said"_s, u"Ctrl+Shift+D"_s, { u"Ctrl+Shift+D"_s }, thread,
            u"Dictate into the reply"_s, somebodyIsOpen,
            [&inbox] {
                inbox.person()->composer()->dictate();
            } },
        { u"unread"_s, u"Mark as unread"_s, u"U"_s, { u"U"_s }, thread },
        { u"archive"_s, u"Archive or unarchive"_s, u"E"_s, { u"E"_s }, thread },
        { u"undo"_s, u"Undo an archive or a deletion"_s, u"Ctrl+Z"_s, { u"Ctrl+Z"_s }, thread },
        { u"mute"_s, u"Mute or unmute"_s, u"M"_s, { u"M"_s }, thread },
        { u"contactPane"_s, u"Show or hide the contact"_s, u"Ctrl+I"_s, { u"Ctrl+I"_s }, thread },
        { u"messageMenu"_s, u"What can be done with it"_s, u"Return"_s, {}, message },
        { u"copy"_s, u"Copy its text"_s, u"Ctrl+C"_s, {}, message },
        { u"play"_s, u"Play or hold a voice note"_s, u"Space"_s, {}, message },
        { u"skip"_s, u"Five seconds back or on"_s, u"Left or Right"_s, {}, message },
        { u"page"_s, u"A page up or down"_s, u"PgUp or PgDown"_s, {}, message },
        { u"deleteLocal"_s, u"Delete the local copy"_s, u"Del"_s, {}, message },
        { .id = u"archiveCurrent"_s,
            .keys = u"E"_s,
            .action = u"Archive current conversation"_s,
            .canRun = somebodyIsOpen,
            .run =
                [&inbox] {
                    inbox.actions()->archiveSelected();
                } },
        { .id = u"muteCurrent"_s,
            .keys = u"M"_s,
            .action = u"Mute / unmute current conversation"_s,
            .canRun = somebodyIsOpen,
            .run =
                [&inbox] {
                    inbox.actions()->muteSelected();
                } },
        { .id = u"toggleCRM"_s,
            .keys = u"Ctrl+I"_s,
            .action = u"Toggle contact panel"_s,
            .canRun = somebodyIsOpen,
            .run =
                [&inbox] {
                    inbox.person()->setShowCRM(!inbox.person()->showCRM());
                } },
        { .id = u"markAllRead"_s,
            .action = u"Mark all as read"_s,
            .run =
                [&inbox] {
                    inbox.actions()->markAllRead();
                } },
        { .id = u"compose"_s,
            .keys = u"Ctrl+N"_s,
            .action = inbox.composeSheet()->title(),
            .run =
                [&inbox] {
                    inbox.writeNew();
                } },
    };
}

}
