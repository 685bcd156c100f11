#pragma once

#include "Store/Work/WorkRecords.h"

namespace corvane {

/// The generated brief of an event.
struct MeetingPrepCacheRow {
    QString eventId;
    QString title;
    QString rawBrief;
    QString aiSummary;
    QString model; ///< the model of the summary
    qint64 generatedAt = 0; ///< milliseconds since the epoch

    bool operator==(const MeetingPrepCacheRow&) const = default;
};

std::optional<MeetingPrepCacheRow> fetchMeetingPrepCache(LocalDB& db, const QString& eventId);

/// Replaces the event's earlier brief; false if the table is missing or cannot be written.
bool storeMeetingPrep(LocalDB& db, const MeetingPrepCacheRow& row);

/// What is known locally about a participant.
struct AttendeeBrief {
    QString contactId;
    QString name;
    QString lastMessage;
    qint64 lastTouch = 0; ///< milliseconds since the epoch, 0 for none
    QString openDeal;
    QString notes;

    bool operator==(const AttendeeBrief&) const = default;
};

/// The contact with that address, else with that name; nothing if there is none.
std::optional<QString> attendeeContact(LocalDB& db, const QString& email, const QString& name);
std::optional<AttendeeBrief> meetingBrief(LocalDB& db, const QString& email, const QString& name);

/// Asks the user whether something should be sent after the meeting, once per event. Returns the decision's id, or
/// nothing if there is none and none could be created.
std::optional<QString> proposeOutboundReview(
    LocalDB& db, const QString& eventId, const QString& title, const QString& summary);

QString outboundReviewId(const QString& eventId); ///< the id of that decision

}
