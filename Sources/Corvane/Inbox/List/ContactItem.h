#pragma once

#include "Store/Messages/InboxQueries.h"

#include <QMetaType>

namespace corvane {

class DateWords;

/// A person of the list in the words of the screen.
class ContactItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QStringList platforms MEMBER platforms)
    Q_PROPERTY(QStringList platformLabels MEMBER platformLabels)
    Q_PROPERTY(QString snippet MEMBER snippet)
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
    QString snippet; ///< one line, cut to what a row can show
    QString timeText;
    int unread = 0;
    QString account; ///< slug
    bool isGroup = false;
    QString avatarPath; ///< a file, or empty
    QString initials;
    int hue = 0; ///< 0 to 359
    bool isMuted = false;
    QString dateGroup; ///< the section that the row stands in; empty in the flat list
    QString spoken; ///< the whole row as one sentence
    bool selected = false;
    bool checked = false;

    const QString& key() const { return id; }
    bool operator==(const ContactItem&) const = default;
};

/// Everything but `dateGroup`, `selected` and `checked`. `mediaType` names the newest message's medium where
/// that message has no text.
QString contactName(const ContactRow& row); ///< as the list shows it
ContactItem contactItem(const ContactRow& row, const QString& mediaType, const DateWords& words);

/// A message that the search found, in the words of the screen.
class MessageHitItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString contactId MEMBER contactId)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString platform MEMBER platform)
    Q_PROPERTY(QString platformLabel MEMBER platformLabel)
    Q_PROPERTY(QString snippet MEMBER snippet)
    Q_PROPERTY(QString timeText MEMBER timeText)
    Q_PROPERTY(bool outgoing MEMBER outgoing)
    Q_PROPERTY(QString initials MEMBER initials)
    Q_PROPERTY(int hue MEMBER hue)
    Q_PROPERTY(QString spoken MEMBER spoken)
public:
    QString id; ///< of the message
    QString contactId;
    QString name;
    QString platform;
    QString platformLabel;
    QString snippet; ///< one line that holds the words searched for
    QString timeText;
    bool outgoing = false;
    QString initials;
    int hue = 0;
    QString spoken;

    const QString& key() const { return id; }
    bool operator==(const MessageHitItem&) const = default;
};

MessageHitItem messageHitItem(const MessageHit& hit, const QString& query, const DateWords& words);

}
