#include "Calls/ContactMatch.h"

#include "Store/Work/CalendarQueries.h"
#include "Support/StoreTest.h"

using namespace corvane;

namespace {

class ContactMatches : public StoreTest {
protected:
    ContactMatches()
    {
        open();
        add("ct:ana", "Ana Ruiz Vega", "Ana@x.example");
        add("ct:bo", " Bo Lind ", "bo@x.example");
        add("ct:ed", "Ed", "me@x.example");
        add("ct:gone", "Greta Holm", "greta@x.example");
        m_db->exec("UPDATE contact SET deleted_at=9 WHERE id='ct:gone';"
                   "UPDATE contact_identity SET deleted_at=9 WHERE contact_id='ct:gone';");
    }

    void add(const QString& id, const QString& name, const QString& email)
    {
        m_db->run(
            "INSERT INTO contact(id, workspace_id, display_name, updated_at) VALUES(?, 'local', ?, 1);", { id, name });
        m_db->run("INSERT INTO contact_identity(id, workspace_id, contact_id, channel, handle, email, updated_at)"
                  " VALUES('id:'||?1, 'local', ?1, 'EMAIL', ?2, ?2, 1);",
            { id, email });
    }

    std::optional<CalendarContactMatch> ofMeeting(const QString& title, const QList<CalAttendee>& people)
    {
        CalEvent event;
        event.title = title;
        event.attendeeDetails = people;
        return calendarContactMatch(*m_db, event);
    }
};

}

TEST_F(ContactMatches, aCallIsLinkedByMostOfANameAndOtherwiseToNobody)
{
    EXPECT_EQ(bestContactMatch(*m_db, "Glazes", "with ANA ruiz vega"), (ContactMatch { "ct:ana", 1 }));
    EXPECT_EQ(bestContactMatch(*m_db, "Bo Lind", ""), (ContactMatch { "ct:bo", 1 })) << "short words count for nothing";
    EXPECT_EQ(bestContactMatch(*m_db, "Vega and Ruiz", "").contactId, "ct:ana") << "two words of three";
    const ContactMatch weak = bestContactMatch(*m_db, "Ana", "the kiln");
    EXPECT_EQ(weak.contactId, "") << "a first name alone is nobody's";
    EXPECT_NEAR(weak.score, 1.0 / 3, 0.01);
    EXPECT_EQ(bestContactMatch(*m_db, "Edition of Ed", "").contactId, "") << "two letters are in many words";
    EXPECT_EQ(bestContactMatch(*m_db, "Greta Holm", "").contactId, "") << "she was deleted";
}

TEST_F(ContactMatches, aMeetingIsLinkedByAnAddressBeforeAnyNameAndNeverToTheUser)
{
    const CalAttendee me { "Me", "me@x.example", true };
    const CalAttendee ana { "A. R.", "ana@X.example" };
    EXPECT_EQ(ofMeeting("Bo Lind", { me, ana }), (CalendarContactMatch { "ct:ana", 0.99, "attendee email" }));
    EXPECT_EQ(ofMeeting("Review", { me }), std::nullopt) << "the user's own address";
    EXPECT_EQ(ofMeeting("Review", { { "Greta", "greta@x.example" } }), std::nullopt);
    const auto named = ofMeeting("Review", { me, { "Ana Ruiz Vega", "other@x.example" } });
    ASSERT_TRUE(named);
    EXPECT_EQ(named->contactId, "ct:ana");
    EXPECT_EQ(named->reason, "attendee/title name match");
    EXPECT_EQ(ofMeeting("Ruiz Vega", { me }), std::nullopt)
        << "enough for a call, not for a recording that starts alone";
}
