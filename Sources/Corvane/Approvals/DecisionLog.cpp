#include "Approvals/DecisionLog.h"

#include "Approvals/ApprovalKey.h"
#include "Approvals/ApprovalRow.h"
#include "Approvals/ApprovalsStore.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Presentation/DateWords.h"
#include "Store/Approvals/EventRequests.h"
#include "Store/Approvals/WorkDecisions.h"

namespace corvane {

namespace {

constexpr int linesAtOnce = 300;
constexpr int bodyLength = 240;
const QString owner = u"Oskel"_s;

struct VerdictWords {
    QString verdict;
    QString tone;
};

/// Nothing for an entry that is not a decision.
std::optional<VerdictWords> verdictWords(const QString& action)
{
    static const QHash<QString, VerdictWords> words {
        { u"approve"_s, { u"Approved"_s, u"good"_s } },
        { u"approve_elsewhere"_s, { u"Approved"_s, u"good"_s } },
        { u"apply"_s, { u"Applied"_s, u"good"_s } },
        { u"reject"_s, { u"Rejected"_s, u"bad"_s } },
    };
    const auto found = words.constFind(action);
    return found == words.cend() ? std::nullopt : std::optional(*found);
}

/// The result of an approval; empty for other entries.
QString outcomeWords(const QString& action)
{
    static const QHash<QString, QString> words {
        { u"sent"_s, u"Sent"_s },
        { u"placed"_s, u"Placed in the browser"_s },
        { u"failed"_s, u"Not sent"_s },
        { u"return"_s, u"It had changed, and came back"_s },
    };
    return words.value(action);
}

/// The current row of the decision.
struct Subject {
    QString title;
    QString body;
    QString hash;
    QString platform;
    QString decidedBy;
};

template <typename Row, typename Tell> std::optional<Subject> subjectOf(const std::optional<Row>& row, Tell tell)
{
    return row ? std::optional(tell(*row)) : std::nullopt;
}

std::optional<Subject> subjectOf(LocalDB& db, const ApprovalRecord& line)
{
    const auto kind = kindOf(line.kind);
    if (kind == ApprovalKind::Draft) {
        return subjectOf(fetchDraft(db, line.subjectId), [](const PendingDraft& draft) {
            const QString to = draft.title.isEmpty() ? draft.externalId : draft.title;
            return Subject { u"Message to "_s + to, draft.body, draftHash(draft), draft.channel, {} };
        });
    }
    if (kind == ApprovalKind::Proposal) {
        return subjectOf(crmProposal(db, line.subjectId), [](const CRMUpdateProposal& proposal) {
            return Subject { proposal.title, proposal.bodyPreview(), proposalHash(proposal), {}, {} };
        });
    }
    if (kind == ApprovalKind::Event) {
        return subjectOf(fetchCalendarCommand(db, line.subjectId), [&](const CalCommand& event) {
            return Subject { event.title, eventWords(event, line.at), eventHash(event), {}, {} };
        });
    }
    return subjectOf(fetchWorkDecision(db, line.subjectId), [](const WorkDecisionRecord& decision) {
        return Subject { decision.title, decision.proposal, decisionHash(decision), {}, decision.decidedBy };
    });
}

QString nameOfGone(const QString& kind)
{
    if (kind == u"draft")
        return u"A message"_s;
    if (kind == u"event")
        return u"A calendar event"_s;
    return kind == u"proposal" ? u"A change to the CRM"_s : u"A decision"_s;
}

QString whoDecided(const ApprovalRecord& line, const QString& decidedBy)
{
    if (line.action == u"approve_elsewhere")
        return u"Another program"_s;
    return decidedBy.isEmpty() || decidedBy == owner ? u"You"_s : decidedBy;
}

DecidedRow rowOf(LocalDB& db, const ApprovalRecord& line, const VerdictWords& words, const DateWords& dates)
{
    const auto subject = subjectOf(db, line);
    DecidedRow row;
    row.id = QString::number(line.seq);
    row.day = dates.group(line.at);
    row.time = dates.clockTime(line.at);
    row.verdict = words.verdict;
    row.tone = words.tone;
    row.who = whoDecided(line, subject ? subject->decidedBy : QString());
    row.kind = line.kind;
    row.platform = subject ? subject->platform : QString();
    row.title = subject ? subject->title : nameOfGone(line.kind);
    if (!subject)
        row.body = u"It is no longer stored."_s;
    else if (subject->hash != line.contentHash)
        row.body = u"It was changed after this."_s;
    else
        row.body = singleLine(firstCharacters(subject->body, bodyLength));
    return row;
}

}

DecisionLog::DecisionLog(ApprovalsStore& store, LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_scheduler(scheduler)
    , m_lines(linesAtOnce)
{
    connect(&store, &ApprovalsStore::changed, this, &DecisionLog::follow);
}

QString DecisionLog::emptyText() const
{
    return u"What you approve, apply or reject appears here, with its result."_s;
}

void DecisionLog::setShown(bool shown)
{
    if (shown == m_shown)
        return;
    m_shown = shown;
    if (shown)
        read();
    Q_EMIT changed();
}

void DecisionLog::showOlder()
{
    m_lines += linesAtOnce;
    read();
}

void DecisionLog::follow()
{
    if (!m_shown)
        return;
    const QList<ApprovalRecord> last = latestRecords(m_db, 1);
    if (!last.isEmpty() && last.first().seq != m_lastSeq)
        read();
}

void DecisionLog::read()
{
    const QList<ApprovalRecord> lines = latestRecords(m_db, m_lines);
    const DateWords dates(m_scheduler.nowMs());
    QHash<QString, QString> outcomes; // by subject; results come later in the log
    QList<DecidedRow> rows;
    for (const ApprovalRecord& line : lines) {
        const QString subject = line.kind + u':' + line.subjectId;
        if (const QString outcome = outcomeWords(line.action); !outcome.isEmpty() && !outcomes.contains(subject))
            outcomes.insert(subject, outcome);
        if (const auto words = verdictWords(line.action)) {
            rows.append(rowOf(m_db, line, *words, dates));
            rows.last().outcome = outcomes.take(subject);
        }
    }
    m_lastSeq = lines.isEmpty() ? 0 : lines.first().seq;
    m_hasOlder = !lines.isEmpty() && lines.last().seq > 1;
    m_rows.assign(rows);
    Q_EMIT changed();
}

}
