#include "Work/WorkTerminalChat.h"

#include "AI/LumoAI.h"
#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkWrites.h"
#include "Work/WorkExport.h"
#include "Work/WorkRows.h"

#include <QPointer>

namespace corvane {

namespace {

constexpr int linesOnPage = 100;
constexpr int packetMessages = 12;
constexpr int packetRows = 12;
constexpr int shortestSource = 4; ///< of a title that is recognised in an answer

QString block(const QStringList& lines)
{
    return lines.isEmpty() ? u"- none"_s : lines.join(u'\n');
}

QString lowered(const QString& module)
{
    return module.toLower();
}

/// Rows whose titles the answer names.
QList<Choice> sourcesOf(const QString& answer, const QList<Choice>& rows)
{
    QList<Choice> named;
    for (const Choice& row : rows) {
        if (row.label.size() >= shortestSource && answer.contains(row.label, Qt::CaseInsensitive))
            named.append(row);
    }
    return named;
}

QList<Choice> nameableRows(LocalDB& db, const QString& module, const WorkContextId& context)
{
    QList<Choice> rows;
    const auto add = [&rows](const QString& id, const QString& title) {
        rows.append({ id, shownLine(title) });
    };
    for (const WorkItemRecord& item : fetchWorkItems(db, module, context, 50))
        add(u"item:"_s + item.id, item.title);
    for (const WorkEvidenceRecord& evidence : fetchWorkEvidence(db, module, context, 50))
        add(u"evidence:"_s + evidence.id, evidence.title);
    return rows;
}

WorkChatSeed chatSeed(const WorkMessageRecord& message, const QList<Choice>& rows, const DateWords& words)
{
    WorkChatSeed seed;
    seed.id = message.id;
    seed.speaker = shownLine(message.speaker.isEmpty() ? message.role : message.speaker);
    seed.body = shownText(message.body);
    seed.time = shownTime(message.createdAt, words);
    seed.isOskel = message.role == "oskel"_L1;
    if (message.kind == "error"_L1)
        seed.tone = u"bad"_s;
    else if (message.kind == "answer"_L1)
        seed.tone = u"answer"_s;
    else if (message.role == "system"_L1)
        seed.tone = u"system"_s;
    if (message.role == "assistant"_L1)
        seed.sources = sourcesOf(seed.body, rows);
    seed.aloud = seed.speaker + u", "_s + seed.time + u": "_s + shownLine(seed.body);
    return seed;
}

}

QString terminalChatInstructions()
{
    return u"You are LumoAI inside Corvane Terminal Chat. Answer only from the LocalDB context packet and the user's "
           "question.\nBe concise and operational. If the packet lacks enough evidence, say exactly what is missing.\n"
           "Do not invent rows, counts, people, or terminal state.\nDo not claim you sent, spent, deleted, deployed, "
           "changed credentials, or performed external/destructive actions.\nFor risky external/send/money/destructive "
           "next steps, say that a work_decision approval is required."_s;
}

QString terminalChatPrompt(LocalDB& db, const WorkContextRow& context, const QString& question)
{
    const QString module = lowered(context.module);
    QStringList messages;
    // The oldest 200: agents rely on the content of this packet.
    for (const WorkMessageRecord& row : fetchWorkMessages(db, module, context.id, 200))
        messages.append(
            u"- [%1] %2: %3"_s.arg(row.createdAt, row.speaker.isEmpty() ? row.role : row.speaker, row.body));
    messages = messages.mid(std::max<qsizetype>(0, messages.size() - packetMessages));
    QStringList items;
    for (const WorkItemRecord& row : fetchWorkItems(db, module, context.id, packetRows)) {
        QString line = u"- %1 %2 %3: %4"_s.arg(row.priority, row.status, row.kind, row.title);
        if (!row.summary.isEmpty())
            line += u" - "_s + row.summary;
        items.append(line);
    }
    QStringList evidence;
    for (const WorkEvidenceRecord& row : fetchWorkEvidence(db, module, context.id, packetRows)) {
        QString line = u"- %1: %2"_s.arg(row.kind, row.title);
        if (!row.source.isEmpty())
            line += u" - source: "_s + row.source;
        if (!row.summary.isEmpty())
            line += u" - "_s + row.summary;
        evidence.append(line);
    }
    const QStringList selected { u"- id: "_s + context.id, u"- module: "_s + context.module,
        u"- kind: "_s + context.kind, u"- slug: "_s + context.slug, u"- title: "_s + context.title,
        u"- subtitle: "_s + context.subtitle, u"- status: "_s + context.status, u"- owner: "_s + context.owner,
        u"- updated_at: "_s + context.updatedAt };
    return u"Selected work_context:\n"_s + selected.join(u'\n') + u"\n\nRecent work_message rows:\n"_s + block(messages)
        + u"\n\nRecent work_item rows:\n"_s + block(items) + u"\n\nRecent work_evidence rows:\n"_s + block(evidence)
        + u"\n\nUser question:\n"_s + question;
}

WorkTerminalChat::WorkTerminalChat(const WorkServices& services, QObject* parent)
    : QObject(parent)
    , m_at(services)
    , m_shown(linesOnPage)
{
}

WorkTerminalChat::~WorkTerminalChat()
{
    if (m_running)
        m_running->cancel();
}

void WorkTerminalChat::setContext(const QString& module, const WorkContext& context)
{
    const bool another = m_context.has_value() != context.has_value() || (context && context->id != m_context->id);
    m_module = module;
    m_context = context;
    if (another) {
        m_shown = linesOnPage;
        m_error.clear();
    }
}

void WorkTerminalChat::reload()
{
    QList<WorkChatSeed> lines;
    if (m_context) {
        const QList<WorkMessageRecord> messages
            = fetchNewestWorkMessages(m_at.db, m_module, m_context->id, m_shown + 1);
        m_hasEarlier = messages.size() > m_shown;
        const QList<Choice> rows = nameableRows(m_at.db, m_module, m_context->id);
        const DateWords words(m_at.db.nowMs());
        for (const WorkMessageRecord& message : messages.mid(m_hasEarlier ? 1 : 0))
            lines.append(chatSeed(message, rows, words));
    }
    m_lines.assign(lines);
    m_log = terminalLines(m_at.db, m_module, m_context).join(u'\n');
    Q_EMIT changed();
}

bool WorkTerminalChat::post(const WorkContextRow& context, const QString& speaker, const QString& role,
    const QString& kind, const QString& body)
{
    return insertWorkMessage(m_at.db,
        { .module = lowered(context.module),
            .context = context.id,
            .speaker = speaker,
            .role = role,
            .kind = kind,
            .body = body })
        .has_value();
}

bool WorkTerminalChat::ask(const QString& question)
{
    const QString asked = question.trimmed();
    if (asked.isEmpty() || busy())
        return false;
    const auto refuse = [this](const QString& why) {
        m_error = why;
        Q_EMIT changed();
        return false;
    };
    if (!m_context)
        return refuse(u"No context selected yet. Terminal Chat appears when this pane shows a saved context."_s);
    if (!post(*m_context, u"Oskel"_s, u"oskel"_s, u"message"_s, asked))
        return refuse(u"Could not save the question."_s);
    run(*m_context, asked, std::nullopt);
    return true;
}

void WorkTerminalChat::answerAsk(const OpsAskRow& ask, const WorkContext& context)
{
    if (busy())
        return;
    const WorkContext& packet = context ? context : m_context;
    if (!packet) {
        m_error = u"Ask saved. There is no context for LumoAI to answer from."_s;
        return Q_EMIT changed();
    }
    run(*packet, ask.question, ask.id);
}

void WorkTerminalChat::dismissError()
{
    m_error.clear();
    Q_EMIT changed();
}

/// The answer goes to the context of the question, even if another one was selected meanwhile.
QCoro::Task<> WorkTerminalChat::run(WorkContextRow context, QString question, std::optional<QString> askId)
{
    const CancelHandle cancel;
    m_running = cancel;
    m_error.clear();
    reload();
    Q_EMIT wrote();
    const QString prompt = terminalChatPrompt(m_at.db, context, question);
    const QPointer<WorkTerminalChat> self(this);
    const Result<QString> answer = co_await m_at.ai.respond(terminalChatInstructions(), prompt, cancel);
    if (!self)
        co_return;
    if (cancel.isCancelled())
        co_return end({});
    if (answer) {
        if (askId)
            answerOpsAsk(m_at.db, *askId, *answer, u"LumoAI"_s);
        post(context, u"LumoAI"_s, u"assistant"_s, u"answer"_s, *answer);
        co_return end({});
    }
    if (askId)
        co_return end(u"Ask saved; LumoAI could not answer: "_s + answer.error().message);
    post(context, u"Corvane"_s, u"system"_s, u"error"_s, u"Ask failed: "_s + answer.error().message);
    end(answer.error().message);
}

void WorkTerminalChat::end(const QString& error)
{
    m_running.reset();
    m_error = error;
    reload();
    m_at.db.watch().tell(StoreSubject::Work);
    Q_EMIT wrote();
}

void WorkTerminalChat::cancel()
{
    if (m_running)
        CancelHandle(*m_running).cancel();
}

void WorkTerminalChat::showEarlier()
{
    m_shown += linesOnPage;
    reload();
}

QString WorkTerminalChat::status() const
{
    return busy() ? u"LumoAI is reading LocalDB context..."_s : m_error;
}

QString WorkTerminalChat::emptyTitle() const
{
    if (!m_context)
        return u"No context selected"_s;
    return m_lines.rows().isEmpty() && !busy() ? u"Ask about this context. Questions and answers stay with it."_s
                                               : QString();
}

QString WorkTerminalChat::emptyText() const
{
    return m_context ? QString() : u"Terminal Chat appears when this pane shows a saved context."_s;
}

QString WorkTerminalChat::earlierText() const
{
    return m_hasEarlier ? u"Show earlier messages"_s : QString();
}

QString WorkTerminalChat::hint() const
{
    return busy() ? u"Waiting for LumoAI"_s : u"Ask LumoAI about this context"_s;
}

}
