#include "Calls/CallSummarizer.h"

#include "AI/LumoAI.h"
#include "Calls/CallTranscriptChunker.h"
#include "Foundation/Text.h"
#include "Foundation/UserDefaults.h"

#include <QPointer>

namespace corvane {

namespace {

constexpr int chunkSize = 6000;
constexpr int failedChunkTail = 1200;
const QString codexKey = QStringLiteral("Corvane.calls.codexAllowed");
const QString codexName = QStringLiteral("Codex CLI");

const QString chunkInstructions = QStringLiteral(
    "You summarize one private local meeting transcript segment inside Corvane. Use only this segment.\n"
    "Write notes for a colleague: decisions, asks, numbers, names, dates, blockers, exact figures, and exact quotes.\n"
    "Do not invent context from missing segments. Keep uncertainty explicit.");

const QString summaryInstructions = QStringLiteral(
    "You summarize a private local meeting transcript inside Corvane. Use only the transcript.\n"
    "Do not invent decisions, promises, names, dates, or tasks. If the transcript is mic-only or unclear, say so.\n"
    "Keep the output compact and useful for CRM notes.");

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

/// Asked anew for each piece: the model of this machine may have gone since the last one.
QCoro::Task<Result<QString>> CallSummarizer::ask(QString instructions, QString prompt, CancelHandle cancel)
{
    const QPointer<CallSummarizer> self(this);
    co_await m_ai.refresh();
    if (!self || cancel.isCancelled())
        co_return cancelled();
    if (m_ai.availableName() == codexName && codexAllowed() != true)
        co_return failure(QStringLiteral("Corvane may not send transcripts to the Codex CLI."));
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
        const QString place = QStringLiteral("%1 of %2").arg(i + 1).arg(chunks.size());
        const Result<QString> summary = co_await ask(chunkInstructions,
            QStringLiteral("Summarize segment %1 for map-reduce call notes.\n\nSegment transcript:\n").arg(place)
                + chunks.at(i),
            cancel);
        if (!self || cancel.isCancelled())
            co_return QString();
        const QString text = summary ? *summary
                                     : QStringLiteral("[unsummarized segment] LumoAI chunk summary failed: ")
                + summary.error().message + u'\n' + firstCharacters(chunks.at(i), failedChunkTail);
        notes.append(QStringLiteral("Segment %1/%2:\n").arg(i + 1).arg(chunks.size()) + text);
    }
    co_return notes.join(QStringLiteral("\n\n"));
}

QCoro::Task<Result<QString>> CallSummarizer::summarize(QString title, QString input, CancelHandle cancel)
{
    const QString named = title.trimmed().isEmpty() ? QStringLiteral("this call") : title;
    return ask(summaryInstructions,
        QStringLiteral("Summarize ") + named
            + QStringLiteral(".\n\n"
                             "Return exactly:\n"
                             "Summary: 1-2 sentences.\n"
                             "Decisions: bullet list, or \"None clear\".\n"
                             "Action items: bullet list, or \"None clear\".\n"
                             "Follow-up: one practical next step, or \"No clear follow-up\".\n"
                             "Warning: mention this is mic-only if the remote side is not clear.\n\n"
                             "Transcript:\n")
            + input,
        cancel);
}

QStringList summaryWarnings(const QString& captureMode)
{
    return { captureMode == QLatin1StringView("mic_and_system")
            ? QStringLiteral("System audio was used as the primary transcript source; local microphone audio was "
                             "retained separately.")
            : QStringLiteral("Mic-only recording. Remote-party audio may be incomplete.") };
}

}
