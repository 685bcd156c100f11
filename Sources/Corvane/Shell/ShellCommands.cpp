#include "Shell/ShellCommands.h"

#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Shell/AppShell.h"
#include "Shell/Hubs.h"

namespace corvane {

QList<Command> shellCommands(AppShell& shell, InboxView& inbox, Commands& commands)
{
    const auto inInbox = [&shell, &commands](const QString& id) {
        return [&shell, &commands, id] {
            shell.selectHub(u"inbox"_s);
            Q_EMIT commands.pageAsked(id);
        };
    };
    const QString hubKeys = hubShortcut(0) + u" … "_s + hubShortcut(int(hubTable().size()) - 1);
    return at({ u"Everywhere"_s, 0 },
        {
            shortcut(u"palette"_s, u"Search and commands"_s, u"Ctrl+K"_s, [&inbox] { inbox.setShowPalette(true); }),
            shortcut(u"search"_s, u"Search the inbox"_s, u"Ctrl+F"_s, inInbox(u"search"_s)),
            { u"hub"_s, u"Go to a hub"_s, hubKeys },
            shortcut(u"settings"_s, u"Settings"_s, u"Ctrl+,"_s, [&shell] { shell.toggleSettings(); }),
            shortcut(u"approvals"_s, u"Approvals"_s, u"Ctrl+Shift+A"_s, [&shell] { shell.toggleApprovals(); }),
            shortcut(u"calls"_s, u"Calls"_s, u"Ctrl+Shift+L"_s, [&shell] { shell.toggleCalls(); }),
            shortcut(u"newMessage"_s, u"New message"_s, u"Ctrl+N"_s, [&inbox] { inbox.writeNew(); }),
            { u"shortcuts"_s, u"Help and this list"_s, u"F1 or ?"_s, { u"F1"_s, u"?"_s } },
            shortcut(u"nextPane"_s, u"Next pane"_s, u"F6"_s),
            shortcut(u"previousPane"_s, u"Previous pane"_s, u"Shift+F6"_s),
            shortcut(u"back"_s, u"Back one level"_s, u"Esc"_s),
        });
}

QList<Command> placeCommands(AppShell& shell)
{
    QList<Command> commands;
    for (const Hub& hub : hubTable()) {
        const QString keys = hubShortcut(int(commands.size()));
        commands.append({ .id = hub.id,
            .keys = keys,
            .sequences = { keys },
            .action = u"Go to "_s + hub.label,
            .run = [&shell, id = hub.id] {
                shell.selectHub(id);
            } });
    }
    commands.append({ .id = u"openCalls"_s, .keys = u"Ctrl+Shift+L"_s, .action = u"Open Calls"_s, .run = [&shell] {
                         shell.openCalls();
                     } });
    return commands;
}

}
