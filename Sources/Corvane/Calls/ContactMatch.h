#pragma once

#include <QString>
#include <optional>

namespace corvane {

class LocalDB;
struct CalEvent;

/// A contact that a text may be about, with a score from 0 to 1. Without a contact the score is that of the best
/// candidate.
struct ContactMatch {
    QString contactId;
    double score = 0;

    bool operator==(const ContactMatch&) const = default;
};

/// The contact whose name matches the text best.
ContactMatch bestContactMatch(LocalDB& db, const QString& title, const QString& text);

struct CalendarContactMatch {
    QString contactId;
    double confidence = 0;
    QString reason; ///< as part of a sentence

    bool operator==(const CalendarContactMatch&) const = default;
};

/// The contact of a meeting: by an attendee's address, else by name.
std::optional<CalendarContactMatch> calendarContactMatch(LocalDB& db, const CalEvent& event);

}
