#include "Inbox/ThreadSummary.h"

#include "AI/AIServices.h"
#include "Inbox/AssistantContext.h"

#include <algorithm>

namespace corvane {

ThreadSummary::ThreadSummary(LocalDB& db, AIServices& ai, QObject* parent)
    : GenerationPanel(ai.ai, parent)
    , m_db(db)
    , m_summaries(ai.summaries)
{
}

QString ThreadSummary::html() const
{
    if (!m_summary)
        return {};
    QString html = m_summary->text.trimmed().toHtmlEscaped().replace(u'\n', QStringLiteral("<br>"));
    for (const LocalAIMessageCitation& citation : m_summary->citations) {
        const QString mark = u'[' + citation.label + u']';
        html.replace(mark, QStringLiteral("<a href=\"%1\">%2</a>").arg(citation.id.toHtmlEscaped(), mark));
    }
    return html;
}

void ThreadSummary::summarize()
{
    if (!m_contact.id.isEmpty())
        run();
}

QCoro::Task<> ThreadSummary::run()
{
    const QList<UnifiedMsgRow> messages = localThread(m_db, m_contact);
    const CancelHandle cancel
        = begin(QStringLiteral("Summarizing with ") + m_ai.availableName().value_or(QStringLiteral("LumoAI")));
    if (citationMessages(messages).isEmpty()) {
        show(State::Empty, QStringLiteral("No local text to summarize"),
            QStringLiteral("This thread has no saved text messages yet."));
        co_return;
    }
    Result<LocalAIThreadSummary> summary = co_await m_summaries.summarize(m_contact.name, messages, cancel);
    if (cancel.isCancelled())
        co_return;
    if (summary) {
        m_summary = *std::move(summary);
        show(State::Ready, QStringLiteral("Summary"));
    } else if (!m_ai.availableName()) {
        show(State::MissingModel, QStringLiteral("Apple Intelligence or Codex CLI unavailable"),
            QStringLiteral("Enable Apple Intelligence in System Settings or install Codex CLI."));
    } else {
        show(State::Error, summary.error().message);
    }
}

}
