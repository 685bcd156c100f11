#pragma once

#include "Store/Search/RecordQueries.h"

#include <QMetaType>

namespace corvane {

class DateWords;

/// A call, note, deal, task, event or work record that a search found, as the screen shows it.
class RecordHitItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString heading MEMBER heading)
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString snippet MEMBER snippet)
    Q_PROPERTY(QString timeText MEMBER timeText)
    Q_PROPERTY(QString more MEMBER more)
    Q_PROPERTY(bool opens MEMBER opens)
    Q_PROPERTY(QString spoken MEMBER spoken)
public:
    QString id; ///< `recordKey`
    QString heading; ///< of its group; only for the first one
    QString icon;
    QString title; ///< one line of styled text with the search words in bold, as is the snippet
    QString snippet; ///< a person, a state or a place, and a piece of the text; may be empty
    QString timeText;
    QString more; ///< what shows the whole group, such as "All notes"; only for the last of a shortened one
    bool opens = true; ///< there is a place to show it
    QString spoken;

    static constexpr const char* role = "record";
    const QString& key() const { return id; }
    bool operator==(const RecordHitItem&) const = default;
};

QString recordKey(const FoundRecord& record); ///< no two results of a search have the same
QString recordIcon(const FoundRecord& record);

/// The first `limit` of each group.
QList<RecordHitItem> recordHitItems(
    const QList<FoundRecord>& records, const QString& words, int limit, const DateWords& dates);

}
