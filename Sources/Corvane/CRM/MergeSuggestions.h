#pragma once

#include <QList>
#include <QString>

namespace corvane {

class LocalDB;

/// Two contacts that may be the same person.
struct MergeCandidate {
    QString aId;
    QString aName;
    QString bId;
    QString bName;
    QString signal; ///< the reason: "email", "phone" or "name"

    bool operator==(const MergeCandidate&) const = default;
};

/// Each pair once, with its strongest signal: e-mail, then phone, then name. With `touching`, only pairs with that
/// contact. Without contacts that have no conversation, and pairs that are already merged.
QList<MergeCandidate> suggestedMerges(LocalDB& db, int limit, const QString& touching = {});

}
