#include "AI/LumoAISummaryService.h"

#include "AI/LumoAI.h"
#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Foundation/Text.h"
#include "Store/People/CrmRecords.h"

#include <QPointer>

namespace corvane {

namespace {

constexpr int nameLength = 140;
constexpr int noteLength = 420;
constexpr qsizetype contextBudget = 48'000; ///< characters of notes and messages together: a local model reads no more
constexpr qsizetype notesBudget = contextBudget / 3;

/// The newest notes, as many as fit.
QString renderNotes(const QList<NoteRow>& notes)
{
    QString lines;
    for (const NoteRow& note : notes) {
        const QString line = u"- "_s + promptLine(note.body, noteLength);
        if (lines.size() + line.size() > notesBudget)
            break;
        lines += (lines.isEmpty() ? QString() : u"\n"_s) + line;
    }
    return lines.isEmpty() ? u"(none)"_s : lines;
}

/// The newest messages, as many as fit into what the notes leave.
QString renderMessages(const QList<UnifiedMsgRow>& messages, qsizetype budget)
{
    QList<LocalAIMessageCitation> citations = citationMessages(messages);
    QString lines = renderThread(citations);
    while (lines.size() > budget && citations.size() > 1) {
        citations.removeFirst();
        lines = renderThread(citations);
    }
    return citations.isEmpty() ? u"(no messages)"_s : lines;
}

}

QString describe(LumoAISummaryServiceError)
{
    return u"There are no local text messages to summarize."_s;
}

LumoAISummaryService::LumoAISummaryService(LumoAI& ai, const Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_ai(ai)
    , m_scheduler(scheduler)
{
}

QCoro::Task<Result<LocalAIThreadSummary>> LumoAISummaryService::summarize(
    QString contactName, QList<UnifiedMsgRow> messages, CancelHandle cancel)
{
    const QList<LocalAIMessageCitation> citations = citationMessages(messages);
    if (citations.isEmpty())
        co_return failure(describe(LumoAISummaryServiceError::EmptyThread));
    const QString instructions
        = u"You summarize private local inbox threads inside Corvane. Use only the provided messages.\n"
          "Do not invent facts, promises, dates, names, or tasks. If context is unclear, say what is "
          "unclear.\n"
          "Cite the local message labels you used, like [M3]. Keep it compact and useful."_s;
    const QString prompt = u"Summarize this local thread with "_s + promptLine(contactName, nameLength)
        + u".\n\n"
          "Return exactly:\n"
          "- Situation: one sentence with citations.\n"
          "- Key points: 2-4 bullets with citations.\n"
          "- Next action: one practical next step or \"No clear action\", with citations.\n\n"
          "Local messages:\n"_s
        + renderThread(citations);
    const QPointer<LumoAISummaryService> self(this);
    const Result<QString> answer = co_await m_ai.respond(instructions, prompt, cancel);
    if (!self)
        co_return cancelled();
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return LocalAIThreadSummary { uuidText(), contactName, m_ai.modelSpec(), *answer, citations,
        m_scheduler.nowMs() };
}

QCoro::Task<Result<QString>> LumoAISummaryService::ask(
    QString contactName, QList<NoteRow> notes, QList<UnifiedMsgRow> messages, QString question, CancelHandle cancel)
{
    const QString instructions
        = u"You are Lumo, answering questions about one CRM contact using ONLY the provided local context. Be concise "
          u"and "
          "concrete. If the context doesn't answer the question, say so plainly — never invent facts, dates, or "
          "commitments."_s;
    const QString known = renderNotes(notes);
    const QString prompt = u"Contact: "_s + promptLine(contactName, nameLength) + u"\nNotes:\n"_s + known
        + u"\n\nRecent thread:\n"_s + renderMessages(messages, contextBudget - known.size()) + u"\n\nQuestion: "_s
        + question;
    return m_ai.respond(instructions, prompt, cancel);
}

}
