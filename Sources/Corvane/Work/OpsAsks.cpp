#include "Work/OpsAsks.h"

#include "AI/LumoAI.h"
#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Work/WorkRows.h"

#include <QPointer>
#include <algorithm>

namespace corvane {

namespace {

constexpr int asksShown = 120;
constexpr int packetRows = 12;

QString block(const QStringList& lines)
{
    return lines.isEmpty() ? u"- none"_s : lines.join(u'\n');
}

}

OpsAskSeed askSeed(const OpsAskRow& ask, const DateWords& words)
{
    OpsAskSeed seed;
    seed.id = ask.id;
    seed.question = shownText(ask.question);
    seed.urgent = ask.urgency == "high"_L1;
    if (ask.urgency != "normal"_L1)
        seed.urgency = seed.urgent ? u"Urgent"_s : shownLine(ask.urgency);
    seed.open = ask.status == "open"_L1;
    seed.facts = factLine({ shownLine(ask.projectSlug), shownTime(ask.ts, words) });
    if (!seed.open)
        seed.answer = u"%1: %2"_s.arg(
            ask.answeredBy.isEmpty() ? u"Answer"_s : shownLine(ask.answeredBy), shownText(ask.answer));
    seed.aloud = QStringList { seed.urgent ? u"Urgent question"_s : u"Question"_s, shownLine(seed.question), seed.facts,
        shownLine(seed.answer) }
                     .join(u", "_s);
    return seed;
}

QString opsAskInstructions()
{
    return u"You are LumoAI inside Corvane. Answer from the LocalDB project packet only.\n"
           "If the packet lacks the answer, say what is missing. Do not claim external sends,\n"
           "money movement, destructive changes, deploys, or credential changes."_s;
}

QString opsAskPrompt(LocalDB& db, const OpsAskRow& ask)
{
    const OpsProjectId project = ask.projectId.isEmpty() ? OpsProjectId() : OpsProjectId(ask.projectId);
    QStringList about;
    for (const OpsProjectRow& row : fetchOpsProjects(db)) {
        if (project && row.id == *project)
            about = { u"- slug: "_s + row.slug, u"- name: "_s + row.name, u"- goal: "_s + row.goal,
                u"- status: "_s + row.status };
    }
    QStringList tabs;
    QStringList updates;
    QStringList asks;
    if (project) {
        for (const OpsTabRow& row : fetchOpsTabs(db, project).mid(0, packetRows))
            tabs.append(u"- %1 %2: %3"_s.arg(row.name, row.isLive ? u"live"_s : u"down"_s, row.currentTask));
        for (const OpsUpdateRow& row : fetchOpsUpdates(db, project, packetRows))
            updates.append(u"- [%1] %2: %3"_s.arg(row.ts, row.kind, row.body));
        for (const OpsAskRow& row : fetchOpsAsks(db, project, AnsweredAsks::Include, packetRows)) {
            if (row.id != ask.id)
                asks.append(u"- %1 %2: %3%4"_s.arg(row.urgency, row.status, row.question,
                    row.answer.isEmpty() ? QString() : u" - answer: "_s + row.answer));
        }
    }
    return u"Answer this ops ask:\n"_s + ask.question + u"\n\nProject:\n"_s + block(about) + u"\n\nTabs:\n"_s
        + block(tabs) + u"\n\nRecent updates:\n"_s + block(updates) + u"\n\nOther asks:\n"_s + block(asks);
}

OpsAsks::OpsAsks(const WorkServices& services, QObject* parent)
    : QObject(parent)
    , m_at(services)
    , m_asks(services.scheduler)
{
}

OpsAsks::~OpsAsks()
{
    if (m_running)
        m_running->cancel();
}

void OpsAsks::reload()
{
    const DateWords words(m_at.db.nowMs());
    QList<OpsAskSeed> seeds;
    for (const OpsAskRow& ask :
        fetchOpsAsks(m_at.db, m_project, m_includeAnswered ? AnsweredAsks::Include : AnsweredAsks::Leave, asksShown))
        seeds.append(askSeed(ask, words));
    m_asks.assign(seeds);
    if (m_answering) {
        // If it was answered elsewhere in the meantime, the second answer replaces the first.
        const auto now = fetchOpsAsk(m_at.db, m_answering->id);
        if (now && now->status != "open"_L1 && m_answering->status == "open"_L1) {
            m_answering = now;
            m_error = u"%1 answered meanwhile: %2"_s.arg(shownLine(now->answeredBy), shownText(now->answer));
        }
    }
    Q_EMIT changed();
}

void OpsAsks::setIncludeAnswered(bool include)
{
    if (std::exchange(m_includeAnswered, include) != include)
        reload();
}

QString OpsAsks::answering() const
{
    return m_answering ? shownText(m_answering->question) : QString();
}

QString OpsAsks::facts() const
{
    return m_answering ? askSeed(*m_answering, DateWords(m_at.db.nowMs())).facts : QString();
}

void OpsAsks::setAnswerText(const QString& text)
{
    if (std::exchange(m_answerText, text) != text)
        Q_EMIT changed();
}

QString OpsAsks::emptyText() const
{
    return u"Questions by people and agents appear here until they are answered."_s;
}

void OpsAsks::beginAnswer(const QString& id)
{
    cancelLumo();
    m_answering = fetchOpsAsk(m_at.db, id);
    m_answerText = m_answering ? m_answering->answer : QString();
    m_error.clear();
    Q_EMIT changed();
}

void OpsAsks::saveAnswer()
{
    if (!m_answering)
        return;
    if (m_answerText.trimmed().isEmpty()) {
        m_error = u"An answer is required."_s;
        return Q_EMIT changed();
    }
    if (!answerOpsAsk(m_at.db, m_answering->id, m_answerText, u"Oskel"_s)) {
        m_error = u"It was not saved: the database could not be written. Your text is still here."_s;
        return Q_EMIT changed();
    }
    m_asks.hold(m_answering->id);
    closeAnswer();
    tell();
}

void OpsAsks::answerWithLumo()
{
    if (m_answering && !busy())
        run(*m_answering);
}

QCoro::Task<> OpsAsks::run(OpsAskRow ask)
{
    const CancelHandle cancel;
    m_running = cancel;
    m_error.clear();
    Q_EMIT changed();
    const QString prompt = opsAskPrompt(m_at.db, ask);
    const QPointer<OpsAsks> self(this);
    const Result<QString> answer = co_await m_at.ai.respond(opsAskInstructions(), prompt, cancel);
    if (!self)
        co_return;
    m_running.reset();
    if (!cancel.isCancelled() && !answer)
        m_error = u"Ask saved; LumoAI could not answer: "_s + answer.error().message;
    const bool saved = !cancel.isCancelled() && answer && answerOpsAsk(m_at.db, ask.id, *answer, u"LumoAI"_s);
    if (saved) {
        closeAnswer();
        tell();
    }
    Q_EMIT changed();
}

void OpsAsks::cancelLumo()
{
    if (m_running)
        CancelHandle(*m_running).cancel();
}

void OpsAsks::closeAnswer()
{
    cancelLumo();
    m_answering.reset();
    m_answerText.clear();
    m_error.clear();
    Q_EMIT changed();
}

void OpsAsks::tell()
{
    reload();
    m_at.db.watch().tell(StoreSubject::Work);
    Q_EMIT wrote();
}

}
