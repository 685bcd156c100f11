#include "Foundation/Literals.h"
#include "Inbox/List/BulkSelection.h"
#include "Inbox/List/CommandPalette.h"
#include "Inbox/List/ContactItem.h"
#include "Inbox/List/InboxRows.h"
#include "Inbox/List/InboxWords.h"
#include "Presentation/DateWords.h"
#include "Support/Print.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const qint64 now = QDateTime(QDate(2025, 11, 21), QTime(15, 0)).toMSecsSinceEpoch();
constexpr qint64 day = 86'400'000;

ContactRow person(const QString& id, const QString& name, const QStringList& platforms = { "WHATSAPP" })
{
    ContactRow row;
    row.id = id;
    row.name = name;
    row.platforms = platforms;
    row.account = "main";
    row.lastTs = now;
    return row;
}

QStringList ids(const QList<ContactRow>& rows)
{
    QStringList result;
    for (const ContactRow& row : rows)
        result.append(row.id);
    return result;
}

ContactItem shown(const ContactRow& row, const QString& mediaType = {})
{
    return contactItem(row, { "IN", "WHATSAPP", 0, mediaType }, DateWords(now));
}

QStringList labels(const QList<PaletteItem>& items)
{
    QStringList result;
    for (const PaletteItem& item : items)
        result.append(item.label);
    return result;
}

}

TEST(InboxList, aSearchLooksThroughCaseAndDiacritics)
{
    ContactRow second = person("2", "Ben");
    second.snippet = "El próximo AÑO";
    const QList<ContactRow> rows { person("1", "José Núñez"), second };
    EXPECT_EQ(ids(matching(rows, u"nunez"_s)), QStringList("1"));
    EXPECT_EQ(ids(matching(rows, u"PROX"_s)), QStringList("2"));
    EXPECT_TRUE(matching(rows, u"zebra"_s).isEmpty());
    const auto narrowed = [&](const QString& typed) {
        return ids(matching(rows, parseSearch(typed, QDate(2026, 11, 22))));
    };
    EXPECT_EQ(narrowed(u"from:nunez"_s), QStringList("1"));
    EXPECT_EQ(narrowed(u"in:people prox"_s), QStringList("2"));
    EXPECT_EQ(narrowed(u"prox in:email"_s) + narrowed(u"prox after:2020"_s), QStringList());
}

TEST(InboxRows, aChangedPersonMovesAndTheEndOfTheListIsNeverGuessed)
{
    const auto at = [](const char* id, qint64 ts) {
        ContactRow row = person(id, id);
        row.lastTs = ts;
        return row;
    };
    const QList<ContactRow> rows { at("c", 30), at("b", 20), at("a", 10) };
    const auto after = [&](const QStringList& changedIds, const QList<ContactRow>& changed, int limit) {
        const auto result = withChanged(rows, changedIds, changed, limit);
        return result ? ids(*result).join(",") : u"read all"_s;
    };
    EXPECT_EQ(after({ "a" }, { at("a", 40) }, 3), "a,c,b");
    EXPECT_EQ(after({ "a" }, { at("a", 30) }, 3), "a,c,b") << "equal times stand by id";
    EXPECT_EQ(after({ "n" }, { at("n", 25) }, 3), "c,n,b") << "the last one makes room";
    EXPECT_EQ(after({ "n" }, { at("n", 5) }, 3), "c,b,a");
    EXPECT_EQ(after({ "n" }, { at("n", 5) }, 4), "c,b,a,n");
    EXPECT_EQ(after({ "b" }, {}, 4), "c,a");
    EXPECT_EQ(after({ "b" }, {}, 3), "read all") << "somebody beyond the end comes in";
    EXPECT_EQ(after({ "a" }, { at("a", 9) }, 3), "read all");
    EXPECT_EQ(after({ "b", "n" }, { at("n", 11) }, 3), "c,n,a");
}

TEST(ContactItem, whatWasSentFromHereSaysSoAndHowFarItGot)
{
    ContactRow row = person("1", "Ana");
    row.snippet = "see you";
    const auto sent = [&](int status) {
        return contactItem(row, { "OUT", "WHATSAPP", status, {} }, DateWords(now));
    };
    EXPECT_EQ(sent(3).snippet, "You: see you");
    EXPECT_EQ(sent(0).ticks + sent(1).ticks + sent(3).ticks + sent(4).ticks, "singledoubleread");
    EXPECT_TRUE(sent(4).spoken.contains("Read: You: see you"));
    EXPECT_EQ(contactItem(row, { "IN", "WHATSAPP", 4, {} }, DateWords(now)).snippet, "see you");
}

TEST(InboxList, filtersNarrowAndUnreadComesFirstInStableOrder)
{
    QList<ContactRow> rows { person("1", "A"), person("2", "B", { "EMAIL", "WHATSAPP" }), person("3", "C", { "EMAIL" }),
        person("4", "D") };
    rows[3].account = "other";
    rows[1].unread = rows[3].unread = 2;
    InboxState state;
    EXPECT_EQ(ids(visible(rows, state)), (QStringList { "1", "2", "3", "4" }));
    state.sort = SortMode::Unread;
    EXPECT_EQ(ids(visible(rows, state)), (QStringList { "2", "4", "1", "3" }));
    state.channelFilter = "EMAIL";
    EXPECT_EQ(ids(visible(rows, state)), (QStringList { "2", "3" }));
    state.channelFilter.clear();
    state.accountFilter = "other";
    EXPECT_EQ(ids(visible(rows, state)), QStringList("4"));
}

TEST(InboxList, dateGroupsStandByTheirNewestMessage)
{
    QList<ContactRow> rows { person("old", "A"), person("today", "B"), person("never", "C"), person("old2", "D") };
    rows[0].lastTs = now - 3 * day;
    rows[2].lastTs = 0;
    rows[3].lastTs = now - 3 * day + 1;
    QStringList groups;
    for (const DateGroup& group : visibleDateGroups(rows, DateWords(now)))
        groups.append(group.label + ": " + ids(group.rows).join(" "));
    EXPECT_EQ(groups, (QStringList { "Today: today", "18 Nov 2025: old old2", "No date: never" }));
}

TEST(InboxList, anEmptyListSaysWhyAndClearsOneThingAtATime)
{
    InboxState state { InboxFilter::NeedsMe, ViewMode::Contacts, SortMode::Recent, " zoë ", {}, "LINKEDIN", "main" };
    const auto title = [&] {
        return emptyTitle(state, "LinkedIn", "Main");
    };
    EXPECT_EQ(title(), "No conversations match “zoë”");
    EXPECT_EQ(emptyDetail(state), "Search checks contact names and latest message previews.");
    state = withoutEmptyingFilter(state);
    EXPECT_EQ(title(), "No LinkedIn conversations — channel filter active");
    EXPECT_EQ(emptyDetail(state), "");
    state = withoutEmptyingFilter(state);
    EXPECT_EQ(title(), "No conversations for Main — account filter active");
    state = withoutEmptyingFilter(state);
    EXPECT_EQ(title(), "No conversations need you — view filter active");
    EXPECT_TRUE(emptyCanClear(state));
    state.filter = InboxFilter::Today;
    EXPECT_EQ(title(), "No conversations today — view filter active");
    state.filter = InboxFilter::Archived;
    EXPECT_EQ(title(), "Nothing archived");
    state = withoutEmptyingFilter(state);
    EXPECT_EQ(title(), "No conversations");
    EXPECT_EQ(emptyDetail(state), "Pair a WhatsApp account in Accounts — chats appear here.");
    EXPECT_FALSE(emptyCanClear(state));
}

TEST(InboxWords, wordsAndWhatTheyNameAgree)
{
    for (const TabItem& tab : inboxTabs([](InboxFilter) { return 3; })) {
        ASSERT_TRUE(inboxFilter(tab.id));
        EXPECT_EQ(wordOf(*inboxFilter(tab.id)), tab.id);
    }
    EXPECT_EQ(inboxTabs([](InboxFilter) { return 3; }).first().count, 3);
    EXPECT_FALSE(inboxFilter("everything"));
    EXPECT_FALSE(viewMode(""));
    EXPECT_FALSE(sortMode("oldest"));
}

TEST(ContactItem, aRowReadsAsOneSentence)
{
    ContactRow row = person("1", "Ana Ruiz");
    row.unread = 3;
    row.lastTs = now - 40 * 60'000;
    row.snippet = "See you\n tomorrow";
    EXPECT_EQ(shown(row).spoken, "Ana Ruiz, WhatsApp, 3 unread, 14:20: See you tomorrow");
    row.isGroup = row.isMuted = true;
    row.unread = 0;
    row.snippet.clear();
    EXPECT_EQ(shown(row).spoken, "Ana Ruiz, WhatsApp, group, muted, 14:20");
}

TEST(ContactItem, noRawAddressIsEverAName)
{
    EXPECT_EQ(shown(person("1", "4917112345678@s.whatsapp.net")).name, "+4917112345678");
    EXPECT_EQ(shown(person("1", "4917112345678@s.whatsapp.net", { "EMAIL", "WHATSAPP" })).name, "+4917112345678");
    EXPECT_EQ(shown(person("1", "4912345@lid")).name, "WhatsApp user 2345");
    EXPECT_EQ(shown(person("1", "")).name, "Unknown");
    EXPECT_EQ(shown(person("1", "ana@example.com", { "EMAIL" })).name, "ana@example.com");
}

TEST(ContactItem, aNameIsOneShortLine)
{
    EXPECT_EQ(shown(person("1", " Ana\nRuiz\n", { "TELEGRAM" })).name, "Ana Ruiz");
    EXPECT_LE(shown(person("1", QString(100'000, u'x'))).name.size(), 160);
}

TEST(ContactItem, aSnippetIsOneShortLine)
{
    ContactRow row = person("1", "Ana");
    const auto snippet = [&](const QString& body, const QString& mediaType = {}) {
        row.snippet = body;
        return shown(row, mediaType).snippet;
    };
    EXPECT_EQ(snippet(" a \n\t b "), "a b");
    EXPECT_EQ(snippet("", "sticker"), "Sticker");
    EXPECT_EQ(snippet("", "poll"), "Media");
    EXPECT_EQ(snippet(""), "");
    EXPECT_EQ(snippet("[Image]"), "Image");
    EXPECT_EQ(snippet(u"\u202Edetrevni\u001b[31m red"_qs), "detrevni[31m red");
    EXPECT_EQ(snippet("[Document] offer.pdf"), "Document: offer.pdf");
    EXPECT_LE(snippet(QString(2'000'000, u'x')).size(), 160);
    const QString family = "👩‍👩‍👧";
    const QString cut = snippet(family.repeated(100));
    EXPECT_EQ(cut.size() % family.size(), 0) << "no character is cut in two";
}

TEST(ContactItem, aHitShowsTheWordsThatWereFound)
{
    MessageHit hit { "m", "ct:EMAIL:ana@x.de", "Ana", "EMAIL", u"word "_s.repeated(400) + "the Invoice is here", now,
        "OUT", "/gone.jpg" };
    const auto snippetOf = [&](const QString& text) {
        hit.snippet = text;
        return messageHitItems({ hit }, "invoice", DateWords(now)).first().snippet;
    };
    EXPECT_TRUE(snippetOf(hit.snippet).endsWith("the <b>Invoice</b> is here"));
    EXPECT_LT(snippetOf(hit.snippet).size(), 100);
    for (int before = 0; before < 150; ++before) {
        const QString snippet = snippetOf(QString(before, u'x') + "Invoice");
        ASSERT_TRUE(snippet.endsWith("x<b>Invoice</b>") || before == 0) << before;
        ASSERT_LE(snippet.size(), 60);
    }
    EXPECT_EQ(snippetOf("<i>Invoice</i> invoice"), "You: &lt;i&gt;<b>Invoice</b>&lt;/i&gt; <b>invoice</b>");
    EXPECT_EQ(messageHitItems({ hit }, "invoice", DateWords(now)).first().avatarPath, "");
}

TEST(ContactItem, hitsStandPersonByPersonInTheOrderOfTheirNewest)
{
    const auto hit = [](const char* id, const char* person) {
        return MessageHit { id, person, person, "SMS", "x", now, "IN", {} };
    };
    QStringList shown;
    for (const MessageHitItem& item :
        messageHitItems({ hit("1", "a"), hit("2", "b"), hit("3", "a"), hit("4", "b") }, "x", DateWords(now)))
        shown.append(item.id + (item.leads ? "!" : ""));
    EXPECT_EQ(shown, (QStringList { "1!", "3", "2!", "4" }));
}

TEST(CommandPalette, contactsComeFirstAndActionsAfterThem)
{
    QList<ContactRow> rows;
    for (int i = 0; i < 40; ++i)
        rows.append(person(QString::number(i), u"Ana %1"_s.arg(i)));
    bool hasSelection = false;
    const QList<Command> commands { { .id = "one",
                                        .action = "Archive it",
                                        .canRun =
                                            [&] {
                                                return hasSelection;
                                            } },
        { .id = "two", .action = "Mark all" }, { .id = "three", .label = "Only a key", .keys = "K" } };
    const auto found = [&](const QList<ContactRow>& people, bool selected, const QString& query) {
        hasSelection = selected;
        return labels(paletteItems(people, commands, query));
    };
    EXPECT_EQ(found(rows, false, {}).size(), 8 + 1);
    EXPECT_EQ(found({}, true, " "), (QStringList { "Archive it", "Mark all" }));
    EXPECT_EQ(found({}, true, "ARCH"), (QStringList { "Archive it", "Search messages for “ARCH”" }));
    EXPECT_EQ(found(rows, true, "aNa").size(), 30 + 1);
    EXPECT_EQ(found(rows, true, "ana 39"), (QStringList { "Ana 39", "Search messages for “ana 39”" }));
}

TEST(CommandPalette, teachesTheWordsThatNarrowASearch)
{
    EXPECT_EQ(labels(paletteItems({}, {}, u"kiln be"_s)),
        (QStringList { u"before:2026-11-22"_s, u"Search messages for “kiln be”"_s }));
    EXPECT_EQ(paletteItems({}, {}, u"before:2026"_s).size(), 1);
    CommandPalette palette;
    EXPECT_TRUE(palette.searchWords().endsWith(u"from: in: has: before: after:"_s));
    const QSignalSpy closed(&palette, &CommandPalette::closed);
    palette.open();
    palette.setQuery(u"kiln be"_s);
    palette.runHighlighted();
    EXPECT_EQ(palette.query(), u"kiln before:"_s);
    EXPECT_EQ(closed.size(), 0);
}

TEST(CommandPalette, theHighlightStaysInTheListAndReturnRunsIt)
{
    CommandPalette palette;
    QAbstractItemModelTester tester(palette.items(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy chosen(&palette, &CommandPalette::contactChosen);
    QSignalSpy searches(&palette, &CommandPalette::searchChosen);
    int runs = 0;
    Commands commands;
    commands.add({ { .id = "one",
                       .action = "One",
                       .run =
                           [&] {
                               ++runs;
                           } },
        { .id = "two", .action = "Two", .run = [&] {
             runs += 10;
         } } });
    palette.setCommands(commands);
    QSignalSpy closed(&palette, &CommandPalette::closed);
    palette.setContacts({ person("1", "Ana"), person("2", "Ben") });
    palette.open();
    palette.moveUp();
    EXPECT_EQ(palette.index(), 0);
    palette.moveDown();
    palette.runHighlighted();
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.first().first(), "2");
    EXPECT_EQ(closed.size(), 1);

    palette.open();
    for (int press = 0; press < 5; ++press)
        palette.moveDown();
    EXPECT_EQ(palette.index(), 3);
    palette.runHighlighted();
    EXPECT_EQ(runs, 10);

    palette.open();
    palette.setIndex(2);
    palette.setContacts({});
    EXPECT_EQ(palette.index(), 0) << "the highlight stays on its line";
    palette.setQuery("zebra");
    palette.runHighlighted();
    ASSERT_EQ(searches.size(), 1) << "what it does not know goes to the search";
    EXPECT_EQ(searches.first().first(), "zebra");
}

TEST(CommandPalette, whatIsFoundLaterStandsAboveTheSearchAndMovesNoHighlight)
{
    const auto work = [](const char* id) {
        FoundRecord record;
        record.kind = "item";
        record.id = id;
        record.title = id;
        return record;
    };
    CommandPalette palette;
    const QSignalSpy searches(&palette, &CommandPalette::searchChosen);
    palette.open();
    palette.setQuery("kiln");
    palette.setFound({ work("Fire the kiln") });
    EXPECT_EQ(palette.index(), 0);
    palette.moveDown();
    palette.setFound({ work("Clean the kiln"), work("Fire the kiln") });
    EXPECT_EQ(palette.items()->rowCount(), 3);
    palette.runHighlighted();
    EXPECT_EQ(searches.size(), 1);
}

TEST(BulkSelection, whatTheListNoLongerShowsDropsOut)
{
    BulkSelection bulk;
    bulk.setListed({ "a", "b", "c", "d", "e" });
    bulk.toggle("d");
    bulk.extendTo("b");
    EXPECT_EQ(bulk.ids(), (QStringList { "b", "c", "d" }));
    EXPECT_EQ(bulk.text(), "3 selected");
    bulk.toggle("c");
    bulk.setListed({ "d", "x" });
    EXPECT_EQ(bulk.ids(), QStringList("d"));
    bulk.set("gone", true);
    bulk.extendTo("gone");
    EXPECT_EQ(bulk.ids(), QStringList("d"));
    bulk.all();
    EXPECT_EQ(bulk.ids(), (QStringList { "d", "x" }));
    bulk.clear();
    EXPECT_FALSE(bulk.active());
}
