#include "Told.h"

#include "Platform/Probes.h"
#include "Support/Environment.h"
#include "Support/StoreTest.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocalServer>
#include <QTcpServer>

using namespace corvane;

namespace {

class MachineChecks : public StoreTest {
protected:
    MachineChecks()
        : m_profile(checkedProfile(m_home.paths(), m_defaults, m_clock.nowMs()))
    {
    }

    QString program(const QString& name, const QByteArray& script)
    {
        m_home.write(name, "#!/bin/sh\n" + script);
        QFile::setPermissions(m_home.path(name), QFile::Permissions(0x7700));
        return m_home.path(name);
    }

    CheckedProfile m_profile;
};

}

TEST_F(MachineChecks, nodeMustBeNewEnough)
{
    const QString advice = u"|Install Node 22.6 or newer, or name one in CORVANE_NODE. Engines run on it."_s;
    const auto with = [&](const QString& name, const QByteArray& script) {
        const QString path = program(name, script);
        const Environment environment { { "CORVANE_NODE", path.toUtf8() } };
        return told(checks::node(m_profile)).replace(path, u"PATH"_s);
    };
    EXPECT_EQ(with(u"node"_s, "echo v22.5.9"), u"failure|PATH is v22.5.9, which is too old."_s + advice);
    EXPECT_EQ(with(u"node"_s, "[ $* = --version ] && echo v22.6.0"), "good|v22.6.0 (PATH).|");
    EXPECT_EQ(with(u"node"_s, "exit 1"), u"failure|No working one was found."_s + advice);
    EXPECT_EQ(with(u"bin/env"_s, "[ \"$*\" = 'node --version' ] && echo v30.0.0"), "good|v30.0.0 (PATH).|");
}

TEST_F(MachineChecks, enginesNeedTheirProgramsAndLibraries)
{
    const QString advice = u"|Install Corvane again, or run tools/setup in its source folder."_s;
    EXPECT_EQ(told(checks::engines(m_profile)),
        u"failure|Their programs are not in %1."_s.arg(m_home.path(u"nimb/apps/nimb-local/mac/engine"_s)) + advice);
    m_home.write("resources/engine/src/main.ts", "");
    const QString folder = m_home.path(u"resources/engine"_s);
    EXPECT_EQ(told(checks::engines(m_profile)),
        u"failure|Their libraries are not in %1/node_modules."_s.arg(folder) + advice);
    m_home.write("resources/engine/node_modules/x", "");
    EXPECT_EQ(told(checks::engines(m_profile)), u"good|They are in %1.|"_s.arg(folder));
}

TEST_F(MachineChecks, theToolServerIsOursIfThereIsAToken)
{
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    const QByteArray port = QByteArray::number(server.serverPort());
    const Environment environment { { "NIMB_MCP_PORT", port } };
    EXPECT_EQ(told(checks::toolServer(m_profile)),
        u"warning|Another program listens on port %1.|It may be another profile of Corvane. Quit it, then start Corvane again."_s
            .arg(QString::fromLatin1(port)));
    m_home.write("share/Corvane/mcp-token", "t");
    EXPECT_EQ(told(checks::toolServer(m_profile)), u"good|It answers on port %1.|"_s.arg(QString::fromLatin1(port)));
    server.close();
    EXPECT_EQ(told(checks::toolServer(m_profile)),
        u"good|It is not running; port %1 is free.|Corvane starts it. Agents reach this profile only while it runs."_s
            .arg(QString::fromLatin1(port)));
}

TEST_F(MachineChecks, whatADesktopLacksIsAWarningOnlyOnADesktop)
{
    QLocalServer sound;
    ASSERT_TRUE(sound.listen(m_home.path(u"sound"_s)));
    Environment environment { { "PULSE_SERVER", "unix:" + m_home.path(u"sound"_s).toUtf8() }, { "DISPLAY", ":7" },
        { "WAYLAND_DISPLAY", {} } };
    EXPECT_EQ(told(checks::sound(m_profile)), "good|The sound server answers.|");
    sound.close();
    const QString silent = u"|No sound server answers: nothing is played or recorded.|Start PipeWire or PulseAudio."_s;
    EXPECT_EQ(told(checks::sound(m_profile)), u"warning"_s + silent);
    environment.set("DISPLAY", {});
    EXPECT_EQ(told(checks::sound(m_profile)), u"good"_s + silent);
    environment.set("WAYLAND_DISPLAY", "wayland-7");
    EXPECT_EQ(told(checks::sound(m_profile)), u"warning"_s + silent);

    const DesktopServices services = desktopServices();
    const auto is = [&](const CheckResult& result, bool isThere, const QString& there, const QString& lacking) {
        EXPECT_EQ(result.words, isThere ? there : lacking);
        EXPECT_EQ(result.health, isThere ? Health::Good : Health::Warning) << qPrintable(lacking);
        EXPECT_EQ(result.advice.isEmpty(), isThere) << qPrintable(lacking);
    };
    is(checks::keyring(m_profile), services.keyring, u"The desktop's keyring answers."_s,
        u"There is none: passwords are kept in a private file."_s);
    is(checks::notifications(m_profile), services.notifications, u"The desktop shows banners."_s,
        u"Nothing shows banners on this desktop."_s);
    is(checks::tray(m_profile), services.trayHost, u"The desktop has a tray."_s, u"This desktop has no tray."_s);
    is(checks::portals(m_profile), services.portal, u"The desktop's portal answers."_s,
        u"There is no portal: the desktop's own file dialog is not available."_s);
}

TEST_F(MachineChecks, speechNeedsARecogniser)
{
    const Environment environment { { "PATH", m_home.path(u"bin"_s).toUtf8() } };
    EXPECT_EQ(told(checks::speech(m_profile)),
        "warning|No speech recogniser is installed.|Install pocketsphinx, or a model in Settings > Voice.");
    EXPECT_EQ(told(checks::browser(m_profile)),
        "good|Chromium is not installed.|Install chromium to preview pages in the developer workspace.");
    program(u"bin/pocketsphinx"_s, "");
    const QString chromium = program(u"bin/chromium-browser"_s, "");
    EXPECT_EQ(told(checks::speech(m_profile)),
        "good|The basic recogniser is installed; a model in Settings > Voice understands more.|");
    EXPECT_EQ(told(checks::browser(m_profile)), u"good|%1.|"_s.arg(chromium));
    m_home.write("share/Corvane/Models/Speech/base.bin", "model");
    const bool hasWhisper = QFileInfo(QCoreApplication::applicationDirPath() + u"/corvane-whisper"_s).isExecutable();
    EXPECT_EQ(told(checks::speech(m_profile)),
        hasWhisper ? "good|A speech model is installed.|"
                   : "warning|There is a model, but nothing to run it with.|Install Corvane again: corvane-whisper is "
                     "missing.");
}

TEST_F(MachineChecks, whatTheProfileMayUseIsNamed)
{
    EXPECT_EQ(checks::modelServer(m_profile).health, Health::Good) << "none is named";
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    m_profile.modelServer = u"http://127.0.0.1:%1"_s.arg(server.serverPort());
    EXPECT_EQ(
        told(checks::modelServer(m_profile)), u"good|A model server answers at %1.|"_s.arg(m_profile.modelServer));
    server.close();
    EXPECT_EQ(told(checks::modelServer(m_profile)),
        u"warning|The one in the settings does not answer: %1.|Start it, or choose another in Settings > Assistant."_s
            .arg(m_profile.modelServer));

    EXPECT_EQ(told(checks::codex(m_profile)),
        "good|It is not installed; you need it only if you choose it as the assistant.|");
    m_profile.codexPlaces = { m_home.path(u"none"_s), program(u"codex"_s, "") };
    EXPECT_EQ(told(checks::codex(m_profile)), u"good|%1.|"_s.arg(m_home.path(u"codex"_s)));

    EXPECT_TRUE(told(checks::calendars(m_profile)).startsWith("good|There is no calendar to read.|Keep calendars in "));
    EXPECT_TRUE(
        told(checks::contacts(m_profile)).startsWith("good|There is no address book to read.|Keep contacts in "));
    m_profile.hasCalendars = m_profile.hasContacts = true;
    EXPECT_EQ(told(checks::calendars(m_profile)), "good|There is a calendar to read.|");
    EXPECT_EQ(told(checks::contacts(m_profile)), "good|There is an address book to read.|");
}

TEST_F(MachineChecks, mailServersOfMailAccountsAreAsked)
{
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QTcpServer gone;
    ASSERT_TRUE(gone.listen(QHostAddress::LocalHost));
    const int answering = server.serverPort();
    const int silent = gone.serverPort();
    gone.close();
    const auto add = [&](const QString& slug, const QString& channel, int imap, int smtp) {
        Account account;
        account.slug = slug;
        account.name = slug.toUpper();
        account.channelRaw = channel;
        m_profile.accounts->append(account);
        const QString place = u"{\"host\":\"127.0.0.1\",\"port\":%1,\"security\":\"tls\"}"_s;
        m_profile.secrets.insert(
            slug, u"{\"password\":\"p\",\"imap\":%1,\"smtp\":%2}"_s.arg(place.arg(imap), place.arg(smtp)));
    };
    EXPECT_EQ(told(checks::mailServers(m_profile)), "good|No account has a mail server of its own.|");
    add(u"bot"_s, u"TELEGRAM"_s, silent, silent);
    add(u"locked"_s, u"EMAIL"_s, silent, silent);
    m_profile.secrets.remove(u"locked"_s);
    EXPECT_EQ(told(checks::mailServers(m_profile)), "good|No account has a mail server of its own.|");
    add(u"good"_s, u"EMAIL"_s, answering, answering);
    EXPECT_EQ(told(checks::mailServers(m_profile)), "good|All of them answer.|");
    add(u"half"_s, u"EMAIL"_s, answering, silent);
    add(u"sick"_s, u"EMAIL"_s, silent, answering);
    EXPECT_EQ(told(checks::mailServers(m_profile)),
        u"failure|No answer from 127.0.0.1:%1 of HALF, 127.0.0.1:%1 of SICK.|"
        "Is this computer online? If so, check the account's servers in Settings > Accounts."_s.arg(silent));
    m_profile.accounts.reset();
    EXPECT_EQ(told(checks::mailServers(m_profile)), "good|No account has a mail server of its own.|");
}

TEST_F(MachineChecks, messagesFromTomorrowMeanAWrongClock)
{
    open();
    constexpr qint64 day = 24LL * 3600 * 1000;
    const auto newestAt = [&](qint64 ms) {
        m_db->run("INSERT OR REPLACE INTO unified_message(id, conversation_id, ts) VALUES('m','c',?);", { ms });
        return told(checks::clock(m_profile));
    };
    const QString later = u", and there are messages from later.|Set the clock, "_s;
    const QString within = newestAt(m_profile.nowMs + day);
    EXPECT_TRUE(within.contains("|It says "_L1)) << qPrintable(within);
    EXPECT_FALSE(within.contains(later)) << qPrintable(within);
    const QString beyond = newestAt(m_profile.nowMs + day + 1);
    EXPECT_TRUE(beyond.startsWith("warning|It says "_L1)) << qPrintable(beyond);
    EXPECT_TRUE(beyond.contains(later)) << qPrintable(beyond);
    EXPECT_EQ(within.startsWith("warning"_L1), clockIsSynchronised() == false);
}
