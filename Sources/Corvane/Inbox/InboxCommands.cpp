#include "Inbox/InboxCommands.h"

#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"

namespace corvane {

QList<Command> inboxCommands(InboxView& inbox)
{
    const auto somebodyIsOpen = [&inbox] {
        return !inbox.person()->selectedId().isEmpty();
    };
    const auto onThePerson = [somebodyIsOpen](const QString& id, const QString& keys, const QString& action,
                                 const std::function<void()>& run) {
        return Command { .id = id, .keys = keys, .action = action, .canRun = somebodyIsOpen, .run = run };
    };
    Command dictate = shortcut(u"dictate"_s, u"Dictate, or insert what was said"_s, u"Ctrl+Shift+D"_s,
        [&inbox] { inbox.reply()->composer()->voice()->dictate(); });
    dictate.action = u"Dictate into the reply"_s;
    dictate.canRun = somebodyIsOpen;
    return at({ u"In the list"_s, 0 },
               {
                   { u"next"_s, u"Next conversation"_s, u"Down or J"_s, { u"J"_s } },
                   { u"previous"_s, u"Previous conversation"_s, u"Up or K"_s, { u"K"_s } },
                   { u"open"_s, u"Open the thread"_s, u"Return"_s },
                   { u"check"_s, u"Select"_s, u"Space"_s },
                   shortcut(u"checkAll"_s, u"Pick all"_s, u"Ctrl+A"_s),
               })
        + at({ u"This conversation"_s, 2 },
            {
                shortcut(u"reply"_s, u"Reply"_s, u"R"_s),
                { u"send"_s, u"Send what is typed"_s, u"Ctrl+Return"_s },
                shortcut(u"assistant"_s, u"Ask the assistant"_s, u"Ctrl+J"_s),
                dictate,
                shortcut(u"unread"_s, u"Mark as unread"_s, u"U"_s),
                shortcut(u"archive"_s, u"Archive or unarchive"_s, u"E"_s),
                shortcut(u"undo"_s, u"Undo an archive or a deletion"_s, u"Ctrl+Z"_s),
                shortcut(u"mute"_s, u"Mute or unmute"_s, u"M"_s),
                shortcut(u"contactPane"_s, u"Show or hide the contact"_s, u"Ctrl+I"_s),
            })
        + at({ u"On a message"_s, 2 },
            {
                { u"messageMenu"_s, u"Show its actions"_s, u"Return"_s },
                { u"copy"_s, u"Copy its text"_s, u"Ctrl+C"_s },
                { u"play"_s, u"Play or pause a voice note"_s, u"Space"_s },
                { u"skip"_s, u"Five seconds back or forward"_s, u"Left or Right"_s },
                { u"page"_s, u"A page up or down"_s, u"PgUp or PgDown"_s },
                { u"deleteLocal"_s, u"Delete the local copy"_s, u"Del"_s },
            })
        + QList<Command> {
              onThePerson(u"archiveCurrent"_s, u"E"_s, u"Archive current conversation"_s,
                  [&inbox] { inbox.actions()->archiveSelected(); }),
              onThePerson(u"muteCurrent"_s, u"M"_s, u"Mute / unmute current conversation"_s,
                  [&inbox] { inbox.actions()->muteSelected(); }),
              onThePerson(u"toggleCRM"_s, u"Ctrl+I"_s, u"Toggle contact panel"_s,
                  [&inbox] { inbox.person()->setShowCRM(!inbox.person()->showCRM()); }),
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
