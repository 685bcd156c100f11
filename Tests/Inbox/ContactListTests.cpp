#include "InboxViewTest.h"
#include "Store/People/CrmRecords.h"

using namespace corvane;

namespace {

class ContactListTest : public InboxViewTest {
protected:
    ContactListView& list = *inbox.list();
    ListFilter& filters = *inbox.filters();
};

}

TEST_F(ContactListTest, whoWroteAboveWhatIsInSightIsCounted)
{
    receive(ana, "hello");
    clock.advance(seconds(1));
    const QSignalSpy moves(&list, &ContactListView::atTopChanged);
    list.setAtTop(true);
    EXPECT_EQ(moves.size(), 0);
    list.setAtTop(false);
    EXPECT_EQ(moves.size(), 1);
    EXPECT_EQ(list.newAbove(), "");
    const QSignalSpy counts(&list, &ContactListView::newAboveChanged);
    receive(ben, "good day");
    EXPECT_EQ(list.newAbove(), "1 new above");
    EXPECT_GT(counts.size(), 0);
    receive(ana, "again");
    EXPECT_EQ(list.newAbove(), "2 new above");
    filters.setSortWord("unread");
    EXPECT_EQ(filters.sortWord() + list.newAbove(), "unread");
    filters.setSortWord("oldest");
    EXPECT_EQ(filters.sortWord(), "unread") << "an unknown word changes nothing";
    filters.setSortWord("recent");
    EXPECT_EQ(filters.sortWord() + list.newAbove(), "recent2 new above");
    list.setAtTop(true);
    EXPECT_EQ(list.newAbove(), "");
    list.setAtTop(false);
    EXPECT_EQ(list.newAbove(), "") << "they have been seen";
}

TEST_F(ContactListTest, theUnreadComeFirstWhereThatIsChosen)
{
    receiveFromAnaAndBen();
    inbox.person()->select(ben);
    restInThread();
    clock.advance(Milliseconds(110));
    EXPECT_EQ(names(), QStringList({ "Ben", "Ana Ruiz" }));
    const QSignalSpy views(&filters, &ListFilter::viewChanged);
    filters.setSortWord("unread");
    EXPECT_EQ(names(), QStringList({ "Ana Ruiz", "Ben" }));
    EXPECT_EQ(views.size(), 1);
    filters.setSortWord("recent");
    EXPECT_EQ(filters.viewModeWord(), "contacts");
    filters.setViewModeWord("messages");
    EXPECT_EQ(filters.viewModeWord(), "messages");
    EXPECT_EQ(views.size(), 3);
    filters.setViewModeWord("pictures");
    EXPECT_EQ(filters.viewModeWord(), "messages");
    EXPECT_EQ(column(list.contacts(), "dateGroup"), QStringList({ "Today", "Today" }));
    receive(ana, "more");
    EXPECT_EQ(column(list.contacts(), "dateGroup"), QStringList({ "Today", "Today" }));
}

TEST_F(ContactListTest, aListThatIsNotShownReadsNothingUntilItIs)
{
    receive(ana, "hello");
    const QSignalSpy shows(&list, &ContactListView::shownChanged);
    list.setShown(true);
    list.setShown(false);
    EXPECT_EQ(shows.size(), 1);
    receive(ben, "good day");
    clock.advance(seconds(1));
    EXPECT_EQ(names(), QStringList("Ana Ruiz"));
    list.setShown(true);
    clock.advance(Milliseconds(110));
    EXPECT_EQ(names(), QStringList({ "Ben", "Ana Ruiz" }));
}

TEST_F(ContactListTest, eightMessagesStandAboveTheOtherRecordsUntilAllAreWanted)
{
    for (int n = 0; n < 9; ++n)
        receive(ana, u"kiln %1"_s.arg(n));
    SearchResults& results = *list.results();
    EXPECT_FALSE(results.messagesShown());
    type("kiln");
    EXPECT_EQ(results.messagesAtFirst(), 9);
    EXPECT_EQ(results.moreMessages(), "");
    EXPECT_TRUE(results.messagesTitle().startsWith("Messages"));
    addNote(engines.db(), ana, "Sweep the kiln");
    type("");
    type("kiln");
    EXPECT_EQ(results.messages()->rowCount(), 9);
    EXPECT_EQ(results.messagesAtFirst(), 8);
    EXPECT_EQ(results.moreMessages(), "All messages");
    EXPECT_TRUE(results.messagesShown());
    results.openRecord("none");
    results.showGroup("none");
    EXPECT_EQ(filters.search(), "kiln");
    results.showAllMessages();
    EXPECT_EQ(filters.search(), "kiln in:messages");
    awaitHits();
    EXPECT_EQ(results.messagesAtFirst(), 9);
    EXPECT_EQ(results.moreMessages(), "");
    EXPECT_TRUE(filters.emptyCanClear());
    EXPECT_EQ(results.recordsNotice(), "");
    filters.setSearch("other");
    EXPECT_TRUE(!results.searching());
    clock.advance(Milliseconds(250));
    clock.advance(Milliseconds(150));
    EXPECT_EQ(results.messagesTitle(), "Searching the messages…");
    awaitHits();
    EXPECT_FALSE(filters.emptyTitle().isEmpty());
}

TEST_F(ContactListTest, oneRowIsPickedFirstWithTheOpenOne)
{
    receiveFromAnaAndBen();
    BulkSelection& bulk = *inbox.actions()->bulk();
    inbox.person()->select(ana);
    bulk.add(ana);
    EXPECT_EQ(bulk.ids(), QStringList(ana));
    bulk.clear();
    bulk.add(ben);
    EXPECT_EQ(bulk.ids().size(), 2) << "the open one, too";
    EXPECT_EQ(column(list.contacts(), "checked"), QStringList({ "true", "true" }));
}
