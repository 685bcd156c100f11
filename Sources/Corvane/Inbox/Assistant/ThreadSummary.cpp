#include "Inbox/Assistant/ThreadSummary.h"

#include "AI/AIServices.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Inbox/Assistant/AssistantContext.h"
#include "Inbox/List/ContactItem.h"

#include <QHash>
#include <QRegularExpression>

namespace corvane {

namespace {

struct Span {
    qsizetype start = 0;
    qsizetype length = 0;
};

/// The labels in brackets: both of "[M3, M4]".
QList<Span> labelsIn(const QString& text)
{
    static const QRegularExpression brackets(u"\\[[^\\[\\]\n]*\\]"_s);
    static const QRegularExpression label(u"\\bM\\d+\\b"_s);
    QList<Span> labels;
    for (const QRegularExpressionMatch& group : brackets.globalMatch(text)) {
        for (const QRegularExpressionMatch& match : label.globalMatch(group.captured()))
            labels.append({ group.capturedStart() + match.capturedStart(), match.capturedLength() });
    }
    return labels;
}

/// Line by line to HTML: keeps list items and bold text.
QString inLines(const QString& text)
{
    static const QRegularExpression point(u"^(\\s*)[-*•]\\s+"_s);
    static const QRegularExpression strong(u"\\*\\*([^*]+)\\*\\*"_s);
    QStringList lines;
    for (QString line : text.split(u'\n')) {
        const QRegularExpressionMatch match = point.match(line);
        const qsizetype indent = std::min<qsizetype>(match.capturedLength(1), 8);
        const QString lead = match.hasMatch() ? u"&nbsp;"_s.repeated(indent * 2) + u"• "_s : QString();
        line = line.mid(match.capturedLength()).trimmed().toHtmlEscaped();
        lines.append(lead + line.replace(strong, u"<b>\\1</b>"_s));
    }
    return lines.join(u"<br>"_s);
}

QString linked(QString html, const QHash<QString, QString>& messages)
{
    const QList<Span> labels = labelsIn(html);
    for (auto span = labels.crbegin(); span != labels.crend(); ++span) {
        const QString label = html.mid(span->start, span->length);
        if (const auto id = messages.constFind(label); id != messages.cend())
            html.replace(span->start, span->length, u"<a href=\"%1\">%2</a>"_s.arg(id->toHtmlEscaped(), label));
    }
    return html;
}

}

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
    QHash<QString, QString> messages;
    for (const LocalAIMessageCitation& citation : m_summary->citations)
        messages.insert(citation.label, citation.id);
    return linked(inLines(m_summary->text.trimmed()), messages);
}

QList<Citation> ThreadSummary::citations() const
{
    if (!m_summary)
        return {};
    QStringList named;
    for (const Span& label : labelsIn(m_summary->text))
        named.append(m_summary->text.mid(label.start, label.length));
    return citationChoices(m_summary->citations, named);
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
        = begin(u"Summarizing with "_s + m_ai.availableName().value_or(u"LumoAI"_s), [this] { summarize(); });
    if (citationMessages(messages).isEmpty()) {
        show(State::Empty, u"No local text to summarize"_s, u"This thread has no saved text messages yet."_s);
        co_return;
    }
    Result<LocalAIThreadSummary> summary = co_await m_summaries.summarize(contactName(m_contact), messages, cancel);
    if (cancel.isCancelled())
        co_return;
    if (summary) {
        m_summary = *std::move(summary);
        show(State::Ready, u"Summary"_s);
    } else if (!m_ai.availableName()) {
        show(State::MissingModel, u"No model and no Codex CLI"_s,
            u"Start %1 or install Codex CLI."_s.arg(machineWords::localModel));
    } else {
        show(State::Error, summary.error().message);
    }
}

}
