#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"
#include "Shell/AppShell.h"
#include "Terminals/TerminalsView.h"

#include <QDir>

namespace corvane {

void drawTerminals(Gallery& gallery)
{
    constexpr Milliseconds pause { 700 };
    TerminalsView& terminals = *gallery.screens().terminals;
    const auto open = [&](const QString& name, const std::string& script) {
        LumoTerminalSession& session = terminals.createLocalSession(
            u"shell"_s, { "/bin/sh", { "-c", script }, {}, QDir::currentPath().toStdString(), {} });
        session.rename(name);
        gallery.wait(pause);
    };
    gallery.screens().shell->selectHub(u"dev"_s);
    gallery.save(u"terminal-empty"_s);
    open(u"marta@studio: ~/site"_s, "Gallery/terminal.sh; cat");
    gallery.save(u"terminal-filled"_s);
    TerminalSearch& search = *terminals.current()->search();
    search.setShown(true);
    search.setText(u"glaze"_s);
    search.next();
    gallery.save(u"terminal-search"_s);
    search.setShown(false);
    open(u"build"_s, "kill -9 $$");
    gallery.save(u"terminal-ended"_s);
    terminals.step(-1);
    gallery.wait(pause);
    terminals.paste(u"cd site\nnpm run build\n./deploy.sh\n"_s);
    gallery.save(u"terminal-question"_s);
    terminals.question()->answer(false);
    gallery.screens().shell->selectHub(u"inbox"_s);
}

}
