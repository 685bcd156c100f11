#include "Engines/MailProbe.h"

#include "Engines/EngineLines.h"
#include "Engines/EngineSpec.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/ProcessLauncher.h"

namespace corvane {

namespace {

constexpr Milliseconds longest { 40'000 }; // runs time out on their own after 30 seconds

Result<FoundMailServers> readFound(const QJsonObject& event)
{
    const auto imap = mailServer(event[u"imap"].toObject());
    const auto smtp = mailServer(event[u"smtp"].toObject());
    if (!imap || !smtp)
        return failure(u"The servers were not found."_s);
    return FoundMailServers {
        .imap = *imap,
        .smtp = *smtp,
        .isGuess = event[u"found"] == u"guess"_s,
        .strangers = textsValue(event, "confirm"_L1).value_or(QStringList()),
        .needsToken = event[u"signIn"] == u"token"_s,
        .hint = event[u"hint"].toString(),
    };
}

Result<void> readSignIn(const QJsonObject& event)
{
    if (event[u"ok"].toBool())
        return {};
    const QString words = event[u"error"].toString();
    const QString at = event[u"at"].toString();
    if (at == u"imap")
        return failure(u"Signing in to read mail failed: %1"_s.arg(words));
    return failure(at == u"smtp" ? u"Signing in to send mail failed: %1"_s.arg(words) : words);
}

}

MailProbe::MailProbe(const AppPaths& paths, ProcessLauncher& launcher, Scheduler& scheduler)
    : m_paths(paths)
    , m_launcher(launcher)
    , m_scheduler(scheduler)
{
}

MailProbe::~MailProbe()
{
    cancel();
}

void MailProbe::findServers(const QString& address, std::function<void(Result<FoundMailServers>)> done)
{
    run(mailProbeSpec(m_paths, u"--discover"_s, address, {}), u"servers"_s,
        [done = std::move(done)](
            const Result<QJsonObject>& event) { done(event ? readFound(*event) : std::unexpected(event.error())); });
}

void MailProbe::signIn(const QString& address, const MailSettings& settings, std::function<void(Result<void>)> done)
{
    run(mailProbeSpec(m_paths, u"--sign-in"_s, address, mailSecret(settings)), u"signIn"_s,
        [done = std::move(done)](
            const Result<QJsonObject>& event) { done(event ? readSignIn(*event) : std::unexpected(event.error())); });
}

void MailProbe::cancel()
{
    m_alive.reset();
    m_limit.reset();
    if (const auto child = std::exchange(m_child, nullptr); child && child->isRunning())
        child->terminate();
}

void MailProbe::run(const ProcessSpec& spec, const QString& type, Done done)
{
    cancel();
    const auto alive = m_alive = std::make_shared<bool>(true);
    const auto answer = std::make_shared<std::optional<QJsonObject>>();
    const auto end = [this, alive = std::weak_ptr(alive), done = std::move(done)](const Result<QJsonObject>& event) {
        if (alive.expired())
            return;
        const Done tell = done; // the next run may replace it
        cancel();
        tell(event);
    };
    const ProcessLauncher::Handlers handlers {
        .output =
            [type, answer](const OutputChunk& chunk) {
                for (const QJsonObject& event : eventsIn(chunk.lines)) {
                    if (event[u"type"] == type)
                        *answer = event;
                }
            },
        .exited
        = [spec, answer, end](
              int code) { end(*answer ? Result<QJsonObject>(**answer) : failure(exitWords(spec, code) + u'.')); },
    };
    const auto child = m_launcher.start(spec, handlers);
    if (!child)
        return end(failure(child.error().message));
    m_child = *child;
    m_limit = m_scheduler.after(longest, [end] { end(failure(u"There was no answer in time."_s)); });
}

}
