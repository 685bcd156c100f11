#pragma once

#include "Store/Messages/InboxQueries.h"
#include "Store/Search/SearchQueries.h"

#include <QMetaType>

namespace corvane {

class DateWords;

/// A person in the list, as the screen shows it.
class ContactItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QStringList platforms MEMBER platforms)
    Q_PROPERTY(QStringList platformLabels MEMBER platformLabels)
    Q_PROPERTY(QString snippet MEMBER snippet)
    Q_PROPERTY(QString ticks MEMBER ticks)
    Q_PROPERTY(QString ticksText MEMBER ticksText)
    Q_PROPERTY(QString timeText MEMBER timeText)
    Q_PROPERTY(int unread MEMBER unread)
    Q_PROPERTY(QString account MEMBER account)
    Q_PROPERTY(bool isGroup MEMBER isGroup)
    Q_PROPERTY(QString avatarPath MEMBER avatarPath)
    Q_PROPERTY(QString initials MEMBER initials)
    Q_PROPERTY(int hue MEMBER hue)
    Q_PROPERTY(bool isMuted MEMBER isMuted)
    Q_PROPERTY(QString dateGroup MEMBER dateGroup)
    Q_PROPERTY(QString spoken MEMBER spoken)
    Q_PROPERTY(bool selected MEMBER selected)
    Q_PROPERTY(bool checked MEMBER checked)
public:
    QString id;
    QString name; ///< never a raw address
    QStringList platforms; ///< such as "WHATSAPP"
    QStringList platformLabels; ///< such as "WhatsApp"
    QString snippet; ///< one line, truncated; sent messages start with "You: "
    QString ticks; ///< delivery state of the newest message, as in a thread; empty if it is incoming
    QString ticksText; ///< the same in a word, such as "Delivered"
    QString timeText;
    int unread = 0;
    QString account; ///< slug
    bool isGroup = false;
    QString avatarPath; ///< a file, or empty
    QString initials;
    int hue = 0; ///< 0 to 359
    bool isMuted = false;
    QString dateGroup; ///< the section of the row; empty in the flat list
    QString spoken; ///< accessible text of the whole row
    bool selected = false;
    bool checked = false;

    static constexpr const char* role = "contact";
    const QString& key() const { return id; }
    bool operator==(const ContactItem&) const = default;
};

QString contactName(const ContactRow& row); ///< as the list shows it

/// Everything but `dateGroup`, `selected` and `checked`.
ContactItem contactItem(const ContactRow& row, const LastMessage& last, const DateWords& words);

/// A search result, as the screen shows it.
class MessageHitItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString contactId MEMBER contactId)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString platform MEMBER platform)
    Q_PROPERTY(QString snippet MEMBER snippet)
    Q_PROPERTY(QString timeText MEMBER timeText)
    Q_PROPERTY(bool leads MEMBER leads)
    Q_PROPERTY(QString avatarPath MEMBER avatarPath)
    Q_PROPERTY(QString initials MEMBER initials)
    Q_PROPERTY(int hue MEMBER hue)
    Q_PROPERTY(QString spoken MEMBER spoken)
public:
    QString id; ///< of the message
    QString contactId;
    QString name;
    QString platform;
    QString platformLabel;
    QString snippet; ///< one line of styled text with the search words in bold
    QString timeText;
    bool leads = true; ///< the first result of its person: the others need no name
    QString avatarPath; ///< a file, or empty
    QString initials;
    int hue = 0;
    QString spoken;

    static constexpr const char* role = "hit";
    const QString& key() const { return id; }
    bool operator==(const MessageHitItem&) const = default;
};

/// Grouped by person, ordered by each one's newest result.
QList<MessageHitItem> messageHitItems(const QList<MessageHit>& hits, const QString& query, const DateWords& words);

}
