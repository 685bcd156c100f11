#pragma once

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Support/Await.h"
#include "Support/FakeDesktop.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"
#include "Terminals/TerminalsView.h"

#include <gtest/gtest.h>

namespace corvane {

/// The terminals with a virtual clock and real programs.
class Terminals : public testing::Test {
protected:
    static terminal::Command script(const std::string& text) { return { "/bin/sh", { "-c", text }, {}, {}, 027 }; }
    /// Opens a session and starts its shell, as showing it in a view does.
    LumoTerminalSession& open(const std::string& text)
    {
        LumoTerminalSession& session = view.createLocalSession(u"Test Run"_s, script(text));
        session.view({ 60, 10 });
        return session;
    }
    static QString transcript(LumoTerminalSession& session) { return session.transcript().snapshot(24'000); }
    static bool awaitText(LumoTerminalSession& session, const QString& text)
    {
        return await([&] { return transcript(session).contains(text); });
    }

    TemporaryHome home;
    VirtualScheduler clock;
    FakeDesktop desktop;
    UserDefaults defaults { home.paths().defaultsFile };
    TerminalsView view { { clock, defaults, desktop, home.paths().home, {} } };
};

}
