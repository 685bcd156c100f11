#include "Calls/CallSummarizer.h"

#include "AI/LumoAI.h"
#include "Calls/CallTranscriptChunker.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Foundation/UserDefaults.h"

#include <QPointer>

namespace corvane {

namespace {

constexpr int chunkSize = 6000;
constexpr int failedChunkTail = 1200;
const QString codexKey = u"Corvane.calls.codexAllowed"_s;
const QString codexName = u"Codex CLI"_s;

const QString chunkInstructions
    = u"You summarize one private local meeting transcript segment inside Corvane. Use only this segment.\n"
      "Write notes for a colleague: decisions, asks, numbers, names, dates, blockers, exact figures, and exact "
      "quotes.\n"
      "Do not invent context from missing segments. Keep uncertainty explicit."_s;

const QString summaryInstructions
    = u"You summarize a private local meeting transcript inside Corvane. Use only the transcript.\n"
      "Do not invent decisions, promises, names, dates, or tasks. If the transcript is mic-only or unclear, say so.\n"
      "Keep the output compact and useful for CRM notes."_s;

}

CallSummarizer::CallSummarizer(LumoAI& ai, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_ai(ai)
    , m_defaults(defaults)
{
}

std::optional<bool> CallSummarizer::codexAllowed() const
{
    return m_defaults.boolean(codexKey);
}

void CallSummarizer::allowCodex(bool allowed)
{
    m_defaults.setBoolean(codexKey, allowed);
}

QCoro::Task<bool> CallSummarizer::needsCodexAnswer()
{
    const QPointer<CallSummarizer> self(this);
    co_await m_ai.refresh();
    co_return self&& m_ai.availableName() == codexName && !codexAllowed();
}

/// Checked for each piece: the local model may have stopped since the last one.
QCoro::Task<Result<QString>> CallSummarizer::ask(QString instructions, QString prompt, CancelHandle cancel)
{
    const QPointer<CallSummarizer> self(this);
    co_await m_ai.refresh();
    if (!self || cancel.isCancelled())
        co_return cancelled();
    if (m_ai.availableName() == codexName && codexAllowed() != true)
        co_return failure(u"Corvane may not send transcripts to the Codex CLI."_s);
    co_return co_await m_ai.respond(instructions, prompt, cancel);
}

QCoro::Task<QString> CallSummarizer::summaryInput(QString transcript, CancelHandle cancel)
{
    if (CallTranscriptChunker::characterCount(transcript) <= chunkSize)
        co_return transcript;
    const QStringList chunks = CallTranscriptChunker::chunks(transcript, chunkSize);
    const QPointer<CallSummarizer> self(this);
    QStringList notes;
    for (qsizetype i = 0; i < chunks.size(); ++i) {
        const QString place = u"%1 of %2"_s.arg(i + 1).arg(chunks.size());
        const Result<QString> summary = co_await ask(chunkInstructions,
            u"Summarize segment %1 for map-reduce call notes.\n\nSegment transcript:\n"_s.arg(place) + chunks.at(i),
            cancel);
        if (!self || cancel.isCancelled())
            co_return QString();
        const QString text = summary ? *summary
                                     : u"[unsummarized segment] LumoAI chunk summary failed: "_s
                + summary.error().message + u'\n' + firstCharacters(chunks.at(i), failedChunkTail);
        notes.append(u"Segment %1/%2:\n"_s.arg(i + 1).arg(chunks.size()) + text);
    }
    co_return notes.join(u"\n\n"_s);
}

QCoro::Task<Result<QString>> CallSummarizer::summarize(QString title, QString input, CancelHandle cancel)
{
    const QString named = title.trimmed().isEmpty() ? u"this call"_s : title;
    return ask(summaryInstructions,
        u"Summarize "_s + named
            + u".\n\n"
              "Return exactly:\n"
              "Summary: 1-2 sentences.\n"
              "Decisions: bullet list, or \"None clear\".\n"
              "Action items: bullet list, or \"None clear\".\n"
              "Follow-up: one practical next step, or \"No clear follow-up\".\n"
              "Warning: mention this is mic-only if the remote side is not clear.\n\n"
              "Transcript:\n"_s
            + input,
        cancel);
}

QStringList summaryWarnings(const QString& captureMode)
{
    return { captureMode == "mic_and_system"_L1
            ? u"System audio was used as the primary transcript source; local microphone audio was "
              "retained separately."_s
            : u"Mic-only recording. Remote-party audio may be incomplete."_s };
}

}
