#include "CRM/MergeSuggestions.h"

#include "Foundation/Ids.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"
#include "Support/StoreTest.h"

#include <algorithm>

namespace corvane {

class MergeSuggestions : public StoreTest {
protected:
    MergeSuggestions() { open(); }

    /// A person with one conversation, on an account named after the channel. Returns the contact's id.
    QString person(const char* channel, const char* handle, const char* name)
    {
        const QString id = contactId(channel, handle);
        ensureConversation(*m_db, channel, channel, handle, QString::fromUtf8(name), 1);
        return id;
    }

    /// The suggestions in order, as "a+b by signal" with the ids without "ct:".
    QStringList suggestions(int limit = 20, const QString& touching = {})
    {
        QStringList result;
        for (const MergeCandidate& pair : suggestedMerges(*m_db, limit, touching))
            result.append(std::min(pair.aId, pair.bId).mid(3) + u'+' + std::max(pair.aId, pair.bId).mid(3) + " by "
                + pair.signal);
        return result;
    }
};

TEST_F(MergeSuggestions, aPairIsSuggestedOnceUnderItsStrongestSignal)
{
    const QString mail = person("EMAIL", "Ana@Example.com", "Ana Lee");
    person("GMAIL", "ana@example.com ", "Ana Lee");
    const auto found = suggestedMerges(*m_db, 20);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found.first().signal, "email");
    EXPECT_EQ(found.first().aName, "Ana Lee");

    const QString phone = person("WHATSAPP", "34600@s.whatsapp.net", "Bo");
    m_db->run("UPDATE contact_identity SET phone='34600' WHERE contact_id=?;", { mail });
    EXPECT_EQ(suggestions(),
        (QStringList { "EMAIL:Ana@Example.com+GMAIL:ana@example.com  by email",
            "EMAIL:Ana@Example.com+WHATSAPP:34600@s.whatsapp.net by phone" }));
    EXPECT_EQ(suggestions(1).size(), 1);
    EXPECT_EQ(suggestions(0), QStringList());
    EXPECT_EQ(suggestions(20, phone), QStringList("EMAIL:Ana@Example.com+WHATSAPP:34600@s.whatsapp.net by phone"));
    EXPECT_EQ(suggestions(20, "ct:EMAIL:nobody"), QStringList());
}

TEST_F(MergeSuggestions, aNameIsComparedByItsLettersAlone)
{
    person("SMS", "1", "José");
    person("SMS", "2", "JOSE\xCC\x81"); // with a combining accent
    person("SMS", "3", "Ann Lee");
    person("SMS", "4", "Annlee!");
    person("SMS", "5", "\xD0\x98\xD1\x80\xD0\xB0"); // Cyrillic
    person("SMS", "6", "\xD0\xB8\xD1\x80\xD0\xB0 7");
    for (const char* name : { "Group 1", "group 2", "WhatsApp user 3", "whatsapp user 4", "Unknown", "unknown",
             "+44 20", "+44 20", "A.", "A.", "", "", "123", "123" })
        person("TELEGRAM", qPrintable(QString::number(m_clock.nowMs())), name), m_clock.advance(Milliseconds(1));
    QStringList found = suggestions();
    found.sort();
    EXPECT_EQ(found, (QStringList { "SMS:1+SMS:2 by name", "SMS:3+SMS:4 by name", "SMS:5+SMS:6 by name" }));
    EXPECT_EQ(suggestions(20, "ct:SMS:4"), QStringList("SMS:3+SMS:4 by name"));
}

TEST_F(MergeSuggestions, whoHasNoConversationOrIsGoneIsNeverSuggested)
{
    person("EMAIL", "ana@example.com", "Ana");
    ensureContactId(*m_db, "GMAIL", "ana@example.com", "Ana");
    EXPECT_EQ(suggestions(), QStringList());
    const QString other = person("GMAIL", "ana@example.com", "Ana");
    EXPECT_EQ(suggestions().size(), 1);
    m_db->run("UPDATE contact SET deleted_at=1 WHERE id=?;", { other });
    EXPECT_EQ(suggestions(), QStringList());
    m_db->exec("UPDATE contact SET deleted_at=NULL; UPDATE unified_conversation SET deleted_at=1;");
    EXPECT_EQ(suggestions(), QStringList());
    m_db->exec("UPDATE unified_conversation SET deleted_at=NULL;");
    EXPECT_TRUE(mergeContacts(*m_db, other, "ct:EMAIL:ana@example.com", "email"));
    EXPECT_EQ(suggestions(), QStringList()) << "they are one already";
}

}
