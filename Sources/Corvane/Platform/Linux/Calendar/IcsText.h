#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QMap>
#include <optional>

namespace corvane {

struct NewCalendarEntry;

// Calendar files as text.

constexpr qint64 mostOfCalendarFile = 16LL * 1024 * 1024;

/// What a parser can be given whatever the file holds: lines are cut at 64 kB, attachments left out. Nothing for a text
/// that nests too deeply, or has more lines than any calendar.
std::optional<QByteArray> boundedIcs(const QByteArray& text);

/// A file of one new event.
QByteArray icsOf(const NewCalendarEntry& entry);

/// The events of a file word for word, by the id that an event and its exceptions share, and the zones that they name.
/// One without an id gets one that follows from its text.
struct IcsParts {
    QByteArrayList zones;
    QMap<QByteArray, QByteArrayList> events;

    QByteArray file(const QByteArray& uid) const; ///< a file of that event alone
};

int openTasks(const QByteArray& text); ///< that are neither completed nor cancelled

IcsParts icsParts(const QByteArray& text);

}
