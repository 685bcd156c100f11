#pragma once

#include "Store/Work/WorkRecords.h"

namespace corvane {

/// A brief that was made for an event.
struct MeetingPrepCacheRow {
    QString eventId;
    QString title;
    QString rawBrief;
    QString aiSummary;
    QString model; ///< who made the summary
    qint64 generatedAt = 0; ///< milliseconds since the epoch

    bool operator==(const MeetingPrepCacheRow&) const = default;
};

std::optional<MeetingPrepCacheRow> fetchMeetingPrepCache(LocalDB& db, const QString& eventId);

/// In place of the event's brief before; false where the table is not there or takes nothing.
bool storeMeetingPrep(LocalDB& db, const MeetingPrepCacheRow& row);

/// What is known here of somebody who takes part.
struct AttendeeBrief {
    QString contactId;
    QString name;
    QString lastMessage;
    qint64 lastTouch = 0; ///< milliseconds since the epoch, 0 for none
    QString openDeal;
    QString notes;

    bool operator==(const AttendeeBrief&) const = default;
};

/// The contact of that address, else of that name; nothing where there is none.
std::optional<QString> attendeeContact(LocalDB& db, const QString& email, const QString& name);
std::optional<AttendeeBrief> meetingBrief(LocalDB& db, const QString& email, const QString& name);

/// Asks a person whether something is to be sent after the meeting: once for an event. The id of the decision, or
/// nothing where there is none and none could be made.
std::optional<QString> proposeOutboundReview(
    LocalDB& db, const QString& eventId, const QString& title, const QString& summary);

QString outboundReviewId(const QString& eventId); ///< of that decision

}
