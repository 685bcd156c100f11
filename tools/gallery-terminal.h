#pragma once

// The pictures of the terminal screen.

#include "Shell/Screens.h"

#include <QDir>

namespace corvane {

using namespace Qt::StringLiterals;

/// `wait` lets some time pass, `save` draws what is on the screen.
template <typename Wait, typename Save> void drawTerminals(Screens& screens, Wait wait, Save save)
{
    constexpr Milliseconds pause { 700 };
    TerminalsView& terminals = screens.terminals;
    const auto open = [&](const QString& name, const std::string& script) {
        LumoTerminalSession& session = terminals.createLocalSession(
            u"shell"_s, { "/bin/sh", { "-c", script }, {}, QDir::currentPath().toStdString(), {} });
        session.rename(name);
        wait(pause);
    };
    screens.shell.selectHub(u"dev"_s);
    save(u"terminal-empty"_s);
    open(u"marta@studio: ~/site"_s, "tools/gallery-terminal.sh; cat");
    save(u"terminal-filled"_s);
    TerminalSearch& search = *terminals.current()->search();
    search.setShown(true);
    search.setText(u"glaze"_s);
    search.next();
    save(u"terminal-search"_s);
    search.setShown(false);
    open(u"build"_s, "kill -9 $$");
    save(u"terminal-ended"_s);
    terminals.step(-1);
    wait(pause);
    terminals.paste(u"cd site\nnpm run build\n./deploy.sh\n"_s);
    save(u"terminal-question"_s);
    terminals.answer(false);
    screens.shell.selectHub(u"inbox"_s);
}

}
