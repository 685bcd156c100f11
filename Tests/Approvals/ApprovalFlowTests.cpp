// The whole path from an agent's row to the engine's acknowledgement, on a virtual clock. The agent is a separate
// process, notifications go over a private bus, and the engine is the demo engine.

#include "Approvals/ApprovalsStore.h"
#include "Calls/RecordedCalls.h"
#include "Foundation/Literals.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Bus/BusNotificationService.h"
#include "Platform/Linux/Services.h"
#include "Store/People/CrmRecords.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/NotificationDaemon.h"
#include "Support/Places.h"
#include "Support/PrivateBus.h"

#include <QDir>
#include <QGuiApplication>
#include <gtest/gtest.h>

using namespace corvane;
namespace {

/// Runs a program and returns its standard output, trimmed.
QString outputOf(const QString& program, const QStringList& arguments = {})
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0)
        << program.toStdString() << ": " << process.readAllStandardError().toStdString();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

/// Sets environment variables for the duration of a test.
class Environment {
public:
    explicit Environment(const QList<std::pair<const char*, QString>>& values)
    {
        for (const auto& [name, value] : values) {
            m_before.append({ name, qEnvironmentVariable(name) });
            qputenv(name, value.toUtf8());
        }
    }
    ~Environment()
    {
        for (const auto& [name, value] : m_before)
            value.isEmpty() ? qunsetenv(name) : qputenv(name, value.toUtf8());
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    QList<std::pair<const char*, QString>> m_before;
};

class ApprovalFlow : public testing::Test {
protected:
    using Shown = NotificationDaemon::Received;

    ApprovalFlow()
    {
        QGuiApplication::setDesktopFileName(u"com.nimb.corvane"_s);
        QDir(around.home.path(u"resources/engine"_s)).removeRecursively();
        QFile::link(QStringLiteral(CORVANE_SOURCE "/demo/engine"), around.home.path(u"resources/engine"_s));
        notifier.bootstrap();
    }
    ~ApprovalFlow() override { QGuiApplication::setDesktopFileName(QString()); }

    void SetUp() override
    {
        ASSERT_FALSE(qEnvironmentVariable("CORVANE_NODE").isEmpty()) << "there is no Node 22.6 or newer";
        Account mail;
        mail.id = QUuid::createUuid();
        mail.slug = u"hola-tallervidal-example"_s;
        mail.email = u"hola@tallervidal.example"_s;
        mail.channelRaw = u"EMAIL"_s;
        engines.start(mail);
        ASSERT_TRUE(becomes([&] { return engines.runtime(mail.id).status == WAStatus::Connected; }));
        ASSERT_TRUE(becomes([&] { return cell(u"SELECT COUNT(*) FROM unified_conversation;"_s).toInt() > 5; }));
        delivery.startWatch();
        approvals.attach(delivery, calls);
    }

    /// Waits for the condition without advancing the clock.
    bool becomes(const std::function<bool()>& condition)
    {
        return await([&] {
            clock.runDue();
            return condition();
        });
    }

    QString cell(const QString& sql) { return engines.db().scalar(sql).value_or(u"-"_s); }

    /// Runs the demo agent and returns the ID of the item it left.
    static QString agent(const QString& kind, const QString& text, const QString& database)
    {
        const QString said
            = outputOf(QStringLiteral(CORVANE_SOURCE "/demo/agent"), { kind, text, u"--database"_s, database });
        return said.section(u' ', 3, 3).chopped(1); // "Waits for you: {id}, ..."
    }
    QString agent(const QString& kind, const QString& text) { return agent(kind, text, engines.db().path()); }

    /// Waits for the next poll and for a banner that ends with `text`, and returns the banner.
    Shown banner(const QString& text)
    {
        clock.advance(seconds(5));
        const auto found = [&] {
            return std::ranges::find_if(
                daemon->received, [&](const Shown& shown) { return shown.body.endsWith(text); });
        };
        EXPECT_TRUE(becomes([&] { return found() != daemon->received.end(); })) << text.toStdString();
        bus.settle();
        return found() == daemon->received.end() ? Shown() : *found();
    }

    void press(const Shown& shown, const QString& label)
    {
        const qsizetype at = shown.actions.indexOf(label);
        ASSERT_GT(at, 0) << "there is no such button";
        Q_EMIT daemon->ActionInvoked(shown.id, shown.actions[at - 1]);
        bus.settle();
    }

    QString draftStatus(const QString& id)
    {
        return cell(u"SELECT status FROM outbound_draft WHERE id='%1';"_s.arg(id));
    }
    bool isSent(const QString& text)
    {
        return cell(u"SELECT COUNT(*) FROM unified_message WHERE direction='OUT' AND body='%1';"_s.arg(text)) != u"0";
    }

    EngineSurroundings around;
    VirtualScheduler& clock = around.clock;
    const Environment environment { {
        { "CORVANE_NODE", outputOf(QStringLiteral(CORVANE_SOURCE "/tools/find-node")) },
        { "HOME", around.home.paths().home },
        { "XDG_DATA_HOME", around.home.path(u"share"_s) },
        { "CORVANE_DEMO_NOW", QString::number(clock.nowMs()) },
        { "CORVANE_DEMO_STILL", u"1"_s },
    } };
    PrivateBus bus;
    QDBusConnection daemonBus = bus.connect();
    std::unique_ptr<NotificationDaemon> daemon = std::make_unique<NotificationDaemon>(daemonBus);
    BusNotificationService service { bus.connect() };
    Notifier notifier { service, around.centre, around.defaults, clock, [] {
                       } };
    SystemScheduler realClock;
    std::unique_ptr<ProcessLauncher> launcher = makeProcessLauncher(realClock);
    EngineManager engines { { around.home.paths(), clock, *launcher, around.ports, around.background, around.keychain,
                                notifier, around.desktop },
        around.openDatabase(clock) };
    DraftDelivery delivery { engines.db(), engines, clock };
    RecordedCalls calls { engines.db() };
    ApprovalsStore approvals { around.centre, notifier, clock };
};

}

TEST_F(ApprovalFlow, whatAgentsLeaveIsAnnouncedDecidedSentAndAcknowledged)
{
    const QString draft = agent(u"draft"_s, u"It is ready on Thursday."_s);
    const QString proposal = agent(u"proposal"_s, u"Wants two sizes."_s);
    const QString decision = agent(u"decision"_s, u"Pay the clay."_s);
    for (const char* text : { "It is ready on Thursday.", "Wants two sizes.", "Pay the clay." }) {
        const QStringList actions = banner(QString::fromUtf8(text)).actions;
        EXPECT_TRUE(actions.contains(u"Approve"_s) && actions.contains(u"Reject"_s)) << text;
    }
    EXPECT_EQ(approvals.drafts().size(), 1);

    // Nothing is sent before the five seconds are over. Then the engine gets the text and acknowledges it.
    approvals.decide(draftKey(draft), Verdict::Approve, seconds(5));
    clock.advance(Milliseconds(4999));
    EXPECT_EQ(draftStatus(draft), u"pending"_s);
    clock.advance(Milliseconds(1));
    EXPECT_TRUE(becomes([&] { return draftStatus(draft) == u"sent"; }));
    EXPECT_TRUE(becomes([&] { return isSent(u"It is ready on Thursday."_s); }));
    EXPECT_NE(cell(u"SELECT provider_msg_id FROM outbound_draft;"_s), u"-"_s);
    clock.advance(seconds(5));
    EXPECT_TRUE(approvals.drafts().isEmpty());

    // The buttons of the banners work. A second press changes nothing.
    for (int presses = 0; presses < 2; ++presses) {
        press(banner(u"Wants two sizes."_s), u"Approve"_s);
        press(banner(u"Pay the clay."_s), u"Reject"_s);
    }
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM contact_note WHERE body='Wants two sizes.';"_s), u"1"_s);
    EXPECT_EQ(cell(u"SELECT status FROM crm_update_proposal WHERE id='%1';"_s.arg(proposal)), u"applied"_s);
    EXPECT_EQ(
        cell(u"SELECT status || decided_by FROM work_decision WHERE id='%1';"_s.arg(decision)), u"rejectedOskel"_s);

    // A banner's button sends at once.
    const QString second = agent(u"draft"_s, u"One."_s);
    press(banner(u"One."_s), u"Approve"_s);
    EXPECT_TRUE(becomes([&] { return draftStatus(second) == u"sent"; }));
}
