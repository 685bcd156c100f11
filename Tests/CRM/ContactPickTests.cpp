#include "CRM/ContactPick.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/StoreTest.h"

#include <QSignalSpy>

namespace corvane {

namespace {

class Pick : public StoreTest {
protected:
    Pick()
    {
        for (int n = 0; n < 35; ++n)
            ensureConversation(
                db, u"EMAIL"_s, u"mail"_s, u"p%1@x.example"_s.arg(n), u"Zoë %1"_s.arg(n), m_clock.nowMs() + n);
    }

    QStringList names() const
    {
        QStringList names;
        for (const auto& person : pick.people())
            names.append(person.name);
        return names;
    }

    LocalDB& db = open();
    QStringList linked;
    bool works = true;
    ContactPick pick { db, [this](const QString& subject, const QString& contact) {
                          linked.append(subject + u' ' + contact);
                          return works;
                      } };
};

}

TEST_F(Pick, thirtyPeopleAreOfferedAndTheWordsNarrowThemByNameOrAddress)
{
    pick.choose(u"ct:EMAIL:p1@x.example"_s);
    EXPECT_EQ(linked, QStringList()) << "nothing is to be linked";
    pick.begin(u"call"_s);
    EXPECT_EQ(pick.people().size(), 30);
    EXPECT_EQ(pick.people().first().detail, "Email");
    const QSignalSpy changes(&pick, &ContactPick::changed);
    pick.setQuery({});
    EXPECT_EQ(changes.size(), 0);
    pick.setQuery(u" ZOE 34 "_s);
    EXPECT_EQ(names(), QStringList("Zoë 34"));
    EXPECT_EQ(changes.size(), 1);
    pick.setQuery(u"P33@X"_s);
    EXPECT_EQ(names(), QStringList("Zoë 33"));
    pick.setQuery(u"nobody"_s);
    EXPECT_EQ(names(), QStringList());

    works = false;
    pick.choose(u"ct:EMAIL:p33@x.example"_s);
    EXPECT_EQ(pick.errorText() + u'|' + pick.subject(), "Couldn't link it, try again.|call");
    EXPECT_EQ(changes.size(), 4);
    works = true;
    pick.begin(u"note"_s);
    EXPECT_EQ(pick.errorText() + pick.query(), "");
    EXPECT_EQ(pick.people().size(), 30);
    pick.choose(u"ct:EMAIL:p1@x.example"_s);
    EXPECT_EQ(pick.subject(), "");
    EXPECT_TRUE(pick.people().isEmpty());
    EXPECT_EQ(linked, QStringList({ "call ct:EMAIL:p33@x.example", "note ct:EMAIL:p1@x.example" }));
    EXPECT_EQ(changes.size(), 6);
}

}
