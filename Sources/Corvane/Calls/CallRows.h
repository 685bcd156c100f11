#pragma once

#include "Calls/CallPhase.h"
#include "Calls/CallTurns.h"
#include "Store/Work/CallQueries.h"

#include <QObject>

namespace corvane {

class CallRecorder;
class DateWords;
struct CRMUpdateProposal;

/// A call in the list.
class CallRow {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString day MEMBER day) ///< of its section: "Today", "8 Oct 2025"
    Q_PROPERTY(QString time MEMBER time)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString tone MEMBER tone) ///< recording busy good warn bad, or empty
    Q_PROPERTY(QString aloud MEMBER aloud)
public:
    QString id;
    QString title;
    QString day;
    QString time;
    QString detail;
    QString tone;
    QString aloud;

    static constexpr const char* role = "call";
    const QString& key() const { return id; }
    bool operator==(const CallRow&) const = default;
};

/// A turn of the transcript.
class CallTurnRow {
    Q_GADGET
    Q_PROPERTY(int number MEMBER number)
    Q_PROPERTY(QString time MEMBER time)
    Q_PROPERTY(QString speaker MEMBER speaker)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(bool mine MEMBER mine)
    Q_PROPERTY(bool hit MEMBER hit) ///< a search hit
public:
    int number = 0;
    QString id;
    QString time;
    QString speaker;
    QString text;
    bool mine = false;
    bool hit = false;

    static constexpr const char* role = "turn";
    const QString& key() const { return id; }
    bool operator==(const CallTurnRow&) const = default;
};

/// A section of the summary with its heading.
class CallSummarySection {
    Q_GADGET
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString text MEMBER text)
public:
    QString title;
    QString text;

    bool operator==(const CallSummarySection&) const = default;
};

/// A change to the CRM that the call proposes.
class CallProposalRow {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString state MEMBER state) ///< the decision, in words; empty while it is pending
    Q_PROPERTY(QString error MEMBER error)
public:
    QString id;
    QString title;
    QString text;
    QString state;
    QString error;

    bool operator==(const CallProposalRow&) const = default;
};

/// The state of a call, for the user.
struct CallState {
    QString words;
    QString tone; ///< as in `CallRow`
};
CallState callState(const QString& status, const QString& error, const CallRecorder& recorder, const QString& id);

CallRow callRow(const CallRecordingRow& call, const CallState& state, const DateWords& words);
QList<CallTurnRow> turnRows(const QList<CallTurn>& turns, const QString& searched);
QList<CallSummarySection> summarySections(const QString& summary);
CallProposalRow proposalRow(const CRMUpdateProposal& proposal);

}
