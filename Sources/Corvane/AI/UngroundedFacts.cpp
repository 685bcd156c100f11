#include "AI/UngroundedFacts.h"

#include "AI/FactScanner.h"
#include "AI/NameFinder.h"
#include "Foundation/Text.h"

#include <QMap>
#include <algorithm>

namespace corvane {

namespace {

constexpr int readableLength = 20'000; // nobody compares a longer draft by eye

}

QStringList ungroundedFacts(const QString& draft, const QString& context)
{
    QSet<QString> stated;
    for (const Fact& fact : scanFacts(context).facts)
        stated.unite(QSet<QString>(fact.states.begin(), fact.states.end()));

    QMap<qsizetype, QString> found;
    const ScannedText scanned = scanFacts(firstCharacters(draft, readableLength));
    for (const Fact& fact : scanned.facts) {
        if (std::ranges::none_of(fact.needs, [&](const QString& key) { return stated.contains(key); }))
            found.insert(fact.start, fact.text);
    }
    for (const Name& name : findNames(scanned.rest, wordsOf(context)))
        found.insert(name.start, name.text);

    QStringList facts = found.values();
    facts.removeDuplicates();
    return facts;
}

}
