#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// A merge that is in effect.
struct LiveMerge {
    QString id;
    QString primaryId;
    QString mergedId;
    QString signal;
    qint64 createdAt = 0; ///< milliseconds since the epoch

    bool operator==(const LiveMerge&) const = default;
};

/// A handle of a person; `email` and `phone` are empty if the handle implies none.
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

/// Pairs of contacts with the same e-mail address or phone number, each pair once.
enum class SharedSign { Email, Phone };
QList<std::pair<QString, QString>> fetchPairsSharing(LocalDB& db, SharedSign sign);

/// Moves the merged contact's conversations to the primary, and gives it the merged one's picture if it has none.
/// Returns the merge's id, or nothing if there is nothing to move or the merge could not be recorded; then nothing has
/// moved.
std::optional<QString> mergeContacts(LocalDB& db, const QString& primary, const QString& merged, const QString& signal);

/// Returns exactly the recorded conversations. False if no live merge with that id exists.
bool unmergeContacts(LocalDB& db, const QString& mergeId);

/// If the contact was merged into someone without a picture of their own, shows it there.
void lendPicture(LocalDB& db, const QString& merged);

/// A new message returns its conversation to its own contact, whose thread a live merge hides. Repeats such merges, and
/// records what moves so that an unmerge returns it. Circular merges are left alone.
void repeatMerges(LocalDB& db);

/// The contact at the end of the id's live merges; the id itself if they are circular.
QString personBehind(LocalDB& db, const QString& id);

/// The live merges into a contact, newest first.
QList<LiveMerge> activeMerges(LocalDB& db, const QString& primary);

/// A contact that something can be linked to; `channel` is that of their newest conversation.
struct ContactLink {
    QString id;
    QString name;
    QString channel;

    bool operator==(const ContactLink&) const = default;
};

/// All people with a conversation, newest first.
QList<ContactLink> fetchContactLinks(LocalDB& db);

bool contactExists(LocalDB& db, const QString& contactId);

/// The display name of a person: their name, else the newest conversation's title or address, else "?".
QString displayName(LocalDB& db, const QString& contactId);

QList<ContactIdentity> identitiesFor(LocalDB& db, const QString& contactId);

}
