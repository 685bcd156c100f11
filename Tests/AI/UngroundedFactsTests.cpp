#include "AI/LumoDraftPrompt.h"
#include "AI/UngroundedFacts.h"
#include "Foundation/Literals.h"
#include "Support/Places.h"
#include "Support/Print.h"

#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

/// A conversation with candidate replies.
struct Scene {
    LumoDraftCRMContext contact;
    QList<UnifiedMsgRow> messages;
    QStringList drafts; ///< invented facts are in braces

    QString context() const
    {
        const LumoDraftPrompt prompt = makeDraftReplyPrompt(contact, messages, u"friendly"_s);
        return prompt.instructions + u'\n' + prompt.prompt;
    }
};

/// File format: "@" starts a scene with the contact's name, "<" and ">" are incoming and outgoing messages, "#" is a
/// note, "-" a draft without invented facts and "+" one with some.
QList<Scene> scenes(const QString& name)
{
    QFile file(QStringLiteral(CORVANE_SOURCE "/Tests/AI/drafts/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
    QList<Scene> all;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        const QString text = line.sliced(2).replace(u"\\n"_s, u"\n"_s);
        if (line.startsWith(u'@')) {
            all.append(Scene {});
            all.last().contact = { u"ct:1"_s, text, { u"WHATSAPP"_s }, {}, {} };
        } else if (line.startsWith(u'#')) {
            all.last().contact.recentNotes.append({ u"n1"_s, text, 1'772'500'000'000 });
        } else if (line.startsWith(u'<') || line.startsWith(u'>')) {
            UnifiedMsgRow row;
            row.direction = line.startsWith(u'<') ? u"IN"_s : u"OUT"_s;
            row.platform = u"WHATSAPP"_s;
            row.body = text;
            row.ts = 1'772'610'000'000 + all.last().messages.size() * 2'820'000;
            all.last().messages.append(row);
        } else {
            all.last().drafts.append(text);
        }
    }
    return all;
}

struct Tally {
    int drafts = 0;
    int draftsWithoutPlants = 0;
    int draftsWithFalseAlarm = 0;
    int planted = 0;
    int found = 0;
    QStringList mistakes;

    void count(const Scene& scene, const QString& marked)
    {
        static const QRegularExpression plant(u"\\{([^}]*)\\}"_s);
        QStringList plants;
        for (const QRegularExpressionMatch& match : plant.globalMatch(marked))
            plants.append(match.captured(1));
        const QString draft = QString(marked).remove(u'{').remove(u'}');
        const QStringList named = ungroundedFacts(draft, scene.context());
        const auto meet = [](const QString& one, const QString& other) {
            return one.contains(other) || other.contains(one);
        };
        for (const QString& each : plants) {
            const bool isFound = std::ranges::any_of(named, [&](const QString& fact) { return meet(fact, each); });
            found += isFound ? 1 : 0;
            if (!isFound)
                mistakes.append(u"missed \"%1\": %2"_s.arg(each, draft));
        }
        const bool isFalse = std::ranges::any_of(named, [&](const QString& fact) {
            return std::ranges::none_of(plants, [&](const QString& each) { return meet(fact, each); });
        });
        if (isFalse)
            mistakes.append(u"false alarm %1: %2"_s.arg(named.join(u" | "_s), draft));
        ++drafts;
        draftsWithoutPlants += plants.isEmpty() ? 1 : 0;
        draftsWithFalseAlarm += isFalse ? 1 : 0;
        planted += static_cast<int>(plants.size());
    }
};

}

TEST(UngroundedFacts, plantedFactsAreFoundAndHonestDraftsStayQuiet)
{
    Tally tally;
    for (const char* file : { "english.txt", "others.txt", "later.txt", "latest.txt" }) {
        for (const Scene& scene : scenes(file)) {
            for (const QString& draft : scene.drafts)
                tally.count(scene, draft);
        }
    }
    EXPECT_EQ(tally.drafts, 264);
    EXPECT_EQ(tally.draftsWithoutPlants, 132);
    std::printf("planted facts found: %d of %d (%.1f %%); drafts with a false alarm: %d of %d (%.1f %%)\n", tally.found,
        tally.planted, 100.0 * tally.found / tally.planted, tally.draftsWithFalseAlarm, tally.drafts,
        100.0 * tally.draftsWithFalseAlarm / tally.drafts);
    const QString mistakes = tally.mistakes.join(u'\n');
    EXPECT_GE(tally.found * 100, tally.planted * 95) << qPrintable(mistakes);
    EXPECT_LE(tally.draftsWithFalseAlarm * 100, tally.drafts * 5) << qPrintable(mistakes);
}

TEST(UngroundedFacts, aFactInAnotherWritingIsTheSameFact)
{
    const std::initializer_list<std::array<const char*, 3>> cases {
        // context, draft, ungrounded facts
        { "See you 2026-03-14 at 15:00", "March 14, 3 pm, 14.3., 14/03/2026", "" },
        { "See you 2026-03-14 at 15:00", "March 14, 2027 at 4 pm", "March 14, 2027|4 pm" },
        { "It is EUR 1,250.00", "1.250 € or 1250 euros", "" },
        { "It is EUR 1,250.00", "$1,250 or 1,250%", "$1,250|1,250%" },
        { "12k for 3.5 tons", "12,000 for 3,5 tons", "" },
        { "call +49 171 5550199", "0171/555 0199 or 0171 5550198", "0171 5550198" },
        { "order 1234567", "1234567, not 1234568", "1234568" },
        { "open 00:30 to 12:30", "12:30 am to 12:30 pm, not 11:30 pm", "11:30 pm" },
        { "open 12 am to 12 pm", "00:00 to 12:00, not 13:00", "13:00" },
        { "https://www.shop.example/a/b", "shop.example and shop.example/a, not shop.example/c", "shop.example/c" },
        { "from ana@corp.example", "ANA@corp.example at corp.example, bob@corp.example", "bob@corp.example" },
        { "invoice 2041", "INV-2041, INV-2042", "INV-2042" },
        { "Meet Petra", "Petra's plan. Hi Paul, Dr. Adams and Hong Kong", "Paul|Adams|Hong Kong" },
        { "[M12] IN SMS 2026-03-01T09:30:00Z: hi", "12 boxes, 30 bags, 1 March", "12|30" },
        { "", "1. first\n2. then\nopen 24/7", "" },
        { "", "", "" },
        { "see shop.example/a/", "https://shop.example/a and shop.example/a/#top", "shop.example/a/#top" },
        { "call 491715550199", "0171/555 0199 or 0171 5550198", "0171 5550198" },
        { "room 01, bed 2", "(01 / 2)", "" },
        { "1,250,000 units", "1.250.000 units, not 1.250.001 units", "1.250.001" },
        { "by March 2026", "in March, not in April 2026", "April 2026" },
        { "12.5. is fine", "12 May, 5 December, not 13 May", "13 May" },
        { "the call takes 2h", "2 hours, not 3 hours", "3" },
    };
    for (const auto& [context, draft, named] : cases)
        EXPECT_EQ(ungroundedFacts(draft, context).join(u'|'), QString(named)) << draft;
}

TEST(UngroundedFacts, whateverStandsInADraftStandsInItself)
{
    for (const char* piece : { "a", "a-", "a.", "1 ", "1.1.", "0-", "(0", "a@", "a@a.", "www.", "\n1", "at ", "A ",
             "A a ", "'", "Dr. ", "\u0301", "\u202E", "1/1/", "[M1] ", "1\u20ac", "5 h", "12 May 26, " }) {
        const QString flood = QString(piece).repeated(2'000);
        EXPECT_EQ(ungroundedFacts(flood, flood), QStringList()) << piece;
    }
}
