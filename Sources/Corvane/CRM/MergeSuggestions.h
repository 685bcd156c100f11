#pragma once

#include <QList>
#include <QString>

namespace corvane {

class LocalDB;

/// Two contacts that may be one person.
struct MergeCandidate {
    QString aId;
    QString aName;
    QString bId;
    QString bName;
    QString signal; ///< what speaks for it: "email", "phone" or "name"

    bool operator==(const MergeCandidate&) const = default;
};

/// Each pair once, under its strongest signal: e-mail, then phone, then name. With `touching`, only pairs with
/// that contact. Contacts without a conversation, and pairs that are merged already, are left out.
QList<MergeCandidate> suggestedMerges(LocalDB& db, int limit, const QString& touching = {});

}
