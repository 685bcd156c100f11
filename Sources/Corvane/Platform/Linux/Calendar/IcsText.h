#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QMap>
#include <optional>

namespace corvane {

struct NewCalendarEntry;

// Calendar files as text.

constexpr qint64 mostOfCalendarFile = 16LL * 1024 * 1024;

/// The text made safe to parse: lines are cut at 64 kB, attachments removed. Nothing for a text that nests too deeply
/// or has more lines than any calendar.
std::optional<QByteArray> boundedIcs(const QByteArray& text);

/// A file with one new event.
QByteArray icsOf(const NewCalendarEntry& entry);

/// The events of a file verbatim, by the UID that an event and its exceptions share, and the time zones that they use.
/// An event without a UID gets one derived from its text.
struct IcsParts {
    QByteArrayList zones;
    QMap<QByteArray, QByteArrayList> events;

    QByteArray file(const QByteArray& uid) const; ///< a file with that event only
};

int openTasks(const QByteArray& text); ///< neither completed nor cancelled

IcsParts icsParts(const QByteArray& text);

}
