#include "CRM/MergeSuggestions.h"

#include "Foundation/Literals.h"
#include "Store/Messages/ThreadQueries.h"
#include "Store/People/IdentityQueries.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <array>

namespace corvane {

namespace {

/// The letters of a name in lower case; empty if the name identifies nobody.
QString comparableName(const QString& name)
{
    static constexpr std::array nameless { u"whatsapp user", u"group", u"unknown", u"+" };
    const QString lower = name.normalized(QString::NormalizationForm_C).toLower();
    if (std::ranges::any_of(nameless, [&](const char16_t* start) { return lower.startsWith(QStringView(start)); }))
        return {};
    QString letters;
    qsizetype count = 0;
    for (const char32_t character : lower.toUcs4()) {
        if (!QChar::isLetter(character))
            continue;
        letters += QChar::fromUcs4(character);
        ++count;
    }
    return count < 2 ? QString() : letters;
}

/// Collects pairs in the given order until there are enough.
class Candidates {
public:
    Candidates(LocalDB& db, int limit, const QString& touching)
        : m_db(db)
        , m_limit(limit)
        , m_touching(touching)
    {
    }

    QList<MergeCandidate> collect()
    {
        readPeople();
        addSharing(SharedSign::Email, u"email"_s);
        addSharing(SharedSign::Phone, u"phone"_s);
        addNamesakes();
        return m_found;
    }

private:
    bool enough() const { return m_found.size() >= m_limit; }

    void readPeople()
    {
        m_people = fetchPeopleWithConversations(m_db);
        m_names.reserve(m_people.size());
        for (const PersonName& person : std::as_const(m_people))
            m_names.insert(person.id, person.name);
    }

    void addSharing(SharedSign sign, const QString& signal)
    {
        if (enough())
            return;
        for (const auto& [a, b] : fetchPairsSharing(m_db, sign))
            add(a, b, signal);
    }

    void addNamesakes()
    {
        QHash<QString, QStringList> byName;
        for (const PersonName& person : std::as_const(m_people)) {
            const QString name = comparableName(person.name);
            if (!name.isEmpty())
                byName[name].append(person.id);
        }
        // A name shared by thousands makes millions of pairs: stops as soon as there are enough.
        for (const QStringList& ids : std::as_const(byName)) {
            if (!m_touching.isEmpty() && !ids.contains(m_touching))
                continue;
            for (qsizetype a = 0; a < ids.size(); ++a) {
                const bool any = m_touching.isEmpty() || ids.at(a) == m_touching;
                for (qsizetype b = a + 1; b < ids.size() && !enough(); ++b) {
                    if (any || ids.at(b) == m_touching)
                        add(ids.at(a), ids.at(b), u"name"_s);
                }
            }
        }
    }

    const QString& effective(const QString& id)
    {
        auto known = m_effective.constFind(id);
        if (known == m_effective.constEnd())
            known = m_effective.insert(id, effectiveContactId(m_db, id));
        return *known;
    }

    void add(const QString& first, const QString& second, const QString& signal)
    {
        if (enough())
            return;
        const QString a = effective(first);
        const QString b = effective(second);
        if (a == b || !m_names.contains(a) || !m_names.contains(b))
            return;
        if (!m_touching.isEmpty() && a != m_touching && b != m_touching)
            return;
        if (const auto pair = std::minmax(a, b); !m_seen.contains(pair)) {
            m_seen.insert(pair);
            m_found.append({ a, m_names.value(a), b, m_names.value(b), signal });
        }
    }

    LocalDB& m_db;
    const qsizetype m_limit;
    const QString m_touching;
    QList<PersonName> m_people; ///< those with a conversation
    QHash<QString, QString> m_names; ///< of the same
    QHash<QString, QString> m_effective; ///< answers of `effectiveContactId`
    QSet<std::pair<QString, QString>> m_seen;
    QList<MergeCandidate> m_found;
};

}

QList<MergeCandidate> suggestedMerges(LocalDB& db, int limit, const QString& touching)
{
    return Candidates(db, limit, touching).collect();
}

}
