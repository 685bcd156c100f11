#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// What is known about a contact; each list is ordered and without duplicates.
struct ContactInfoRow {
    QStringList emails;
    QStringList phones;
    QStringList platforms; ///< channels, such as "WHATSAPP"
    QStringList handles;
    QStringList companies; ///< of the contact's deals

    void add(const ContactInfoRow& more); ///< of another contact of the same person
    bool operator==(const ContactInfoRow&) const = default;
};

ContactInfoRow fetchContactInfo(LocalDB& db, const QString& contactId);

/// An activity of a contact.
struct ActivityRow {
    enum class Kind { Message, Note, Call };

    Kind kind = Kind::Message;
    QString id;
    QString channel; ///< of a message
    QString direction; ///< of a message: "IN" or "OUT"
    QString text; ///< body or transcript, the note, the call's title
    QString processingStatus; ///< of a call
    qint64 ts = 0; ///< milliseconds since the epoch

    bool operator==(const ActivityRow&) const = default;
};

/// Messages, notes and calls in one list, newest first.
QList<ActivityRow> fetchContactActivity(LocalDB& db, const QString& contactId, int limit);

/// A durable fact that agents store about a scope: "business", "owner", or "contact:{contact id}".
struct MemoryEntry {
    QString id;
    QString body;

    bool operator==(const MemoryEntry&) const = default;
};

/// Oldest first.
QList<MemoryEntry> fetchMemoryEntries(LocalDB& db, const QString& scope);

struct ScopedMemoryEntry {
    QString id;
    QString scope;
    QString contactName; ///< of a contact's scope
    QString body;

    bool operator==(const ScopedMemoryEntry&) const = default;
};

/// Of all scopes: business, owner, then contacts by name; oldest first within a scope.
QList<ScopedMemoryEntry> fetchAllMemoryEntries(LocalDB& db, int limit);

/// An entry as stored, so that it can be restored after it was forgotten.
struct ForgottenMemory {
    QString id;
    QString scope;
    QString body;
    QString createdAt; ///< ISO 8601
};

/// Really deletes the row; nothing if there is none, or it could not be deleted.
std::optional<ForgottenMemory> forgetMemoryEntry(LocalDB& db, const QString& id);
bool keepMemoryEntry(LocalDB& db, const ForgottenMemory& entry);

}
