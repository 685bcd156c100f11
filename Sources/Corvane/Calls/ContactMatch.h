#pragma once

#include <QString>
#include <optional>

namespace corvane {

class LocalDB;
struct CalEvent;

/// A contact that a text may be about, and how likely, from 0 to 1. Without a contact the score still tells how close
/// the best one came.
struct ContactMatch {
    QString contactId;
    double score = 0;

    bool operator==(const ContactMatch&) const = default;
};

/// The contact whose name the text holds best.
ContactMatch bestContactMatch(LocalDB& db, const QString& title, const QString& text);

struct CalendarContactMatch {
    QString contactId;
    double confidence = 0;
    QString reason; ///< within a sentence

    bool operator==(const CalendarContactMatch&) const = default;
};

/// Whom a meeting is with: by an attendee's address, else by the names.
std::optional<CalendarContactMatch> calendarContactMatch(LocalDB& db, const CalEvent& event);

}
