#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// A merge that was not undone.
struct LiveMerge {
    QString id;
    QString primaryId;
    QString mergedId;
    QString signal;
    qint64 createdAt = 0; ///< milliseconds since the epoch

    bool operator==(const LiveMerge&) const = default;
};

/// A handle of a person; `email` and `phone` are empty where the handle implies none.
struct ContactIdentity {
    QString channel;
    QString handle;
    QString email;
    QString phone;

    bool operator==(const ContactIdentity&) const = default;
};

struct PersonName {
    QString id;
    QString name; ///< empty if none
};

QList<PersonName> fetchPeopleWithConversations(LocalDB& db);

/// Pairs of contacts, each pair once, with the same e-mail address or the same phone number.
enum class SharedSign { Email, Phone };
QList<std::pair<QString, QString>> fetchPairsSharing(LocalDB& db, SharedSign sign);

/// Moves the merged contact's conversations to the primary, and lends it the merged one's picture where it has none.
/// Returns the merge's id, or nothing where there is
/// nothing to move or the merge could not be recorded; then nothing has moved.
std::optional<QString> mergeContacts(LocalDB& db, const QString& primary, const QString& merged, const QString& signal);

/// Gives the recorded conversations back, and no others. False where no live merge of that id is on record.
bool unmergeContacts(LocalDB& db, const QString& mergeId);

/// The person that the contact was merged into, if any, shows its picture where they have none of their own.
void lendPicture(LocalDB& db, const QString& merged);

/// A new message gives its conversation back to its own contact, whose thread a live merge hides. Repeats such merges,
/// recording what moves so that an unmerge returns it. Merges that lead in a circle are left as they are.
void repeatMerges(LocalDB& db);

/// The contact at the end of the id's live merges; the id itself where they lead in a circle.
QString personBehind(LocalDB& db, const QString& id);

/// The live merges into a contact, newest first.
QList<LiveMerge> activeMerges(LocalDB& db, const QString& primary);

/// A contact to whom something can be linked; `channel` is that of their newest conversation.
struct ContactLink {
    QString id;
    QString name;
    QString channel;

    bool operator==(const ContactLink&) const = default;
};

/// Everybody with a conversation, the newest conversation first.
QList<ContactLink> fetchContactLinks(LocalDB& db);

bool contactExists(LocalDB& db, const QString& contactId);

/// What a person is called: their name, else the newest conversation's title or address, else "?".
QString displayName(LocalDB& db, const QString& contactId);

QList<ContactIdentity> identitiesFor(LocalDB& db, const QString& contactId);

}
