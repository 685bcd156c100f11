#include "Foundation/Literals.h"
#include "Inbox/Thread/ThreadRow.h"
#include "Inbox/Thread/UnifiedBubble.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QDateTime>
#include <gtest/gtest.h>

using namespace corvane;
namespace bubble = corvane::UnifiedBubble;

namespace {

const qint64 noon = QDateTime(QDate(2025, 10, 8), QTime(12, 0)).toMSecsSinceEpoch();

UnifiedMsgRow message(qint64 ts, const QString& direction = "IN", const QString& sender = "Ana")
{
    static int serial = 0;
    UnifiedMsgRow row;
    row.id = u"wa:msg:%1"_s.arg(++serial);
    row.direction = direction;
    row.body = "hello";
    row.platform = "WHATSAPP";
    row.ts = ts;
    row.sender = sender;
    return row;
}

UnifiedMsgRow medium(const std::optional<QString>& type, const std::optional<QString>& path, const QString& body = {})
{
    UnifiedMsgRow row = message(noon);
    row.body = body;
    row.mediaType = type;
    row.mediaPath = path;
    return row;
}

/// The items as letters: D a date, m a message, g a grouped message; "." follows a message that shows its time.
std::string shape(const QList<UnifiedMsgRow>& rows)
{
    std::string letters;
    for (const ThreadItem& item : ThreadBuilder::build(rows, 0)) {
        const auto* each = std::get_if<ThreadMsg>(&item);
        letters += !each ? "D" : each->grouped ? "g" : "m";
        if (each && each->showTime)
            letters += '.';
    }
    return letters;
}

std::string ticks(const QString& platform, int status, const QString& direction = "OUT")
{
    UnifiedMsgRow row = message(noon, direction);
    row.platform = platform;
    row.status = status;
    const bubble::Ticks shown = bubble::statusTicks(row.direction, row.platform, row.status);
    static const char* kinds[] { "none", "single", "double", "read", "word" };
    const QString text = shown.help.isEmpty() ? shown.text : shown.text + " (" + shown.help + ")";
    return std::string(kinds[int(shown.kind)]) + " " + text.toStdString();
}

QList<ThreadRow> shownRows(const QList<UnifiedMsgRow>& rows, const ThreadSurroundings& surroundings = {})
{
    return threadRows(ThreadBuilder::build(rows, 0), surroundings);
}

}

TEST(ThreadBuilder, bubblesRunTogetherBelowThreeMinutes)
{
    EXPECT_EQ(shape({}), "");
    EXPECT_EQ(shape({ message(noon), message(noon + 179'999) }), "Dmg.");
    EXPECT_EQ(shape({ message(noon), message(noon + 180'000) }), "Dm.m.");
    EXPECT_EQ(shape({ message(noon), message(noon + 1, "OUT") }), "Dm.m.");
    EXPECT_EQ(shape({ message(noon), message(noon + 1, "IN", "Ben") }), "Dm.m.");
    EXPECT_EQ(shape({ message(noon), message(noon + 170'000), message(noon + 340'000) }), "Dmgg.")
        << "each step counts for itself";
}

TEST(ThreadBuilder, aNewDayWithinARunStandsBetweenItsBubbles)
{
    const qint64 midnight = noon + 12 * 3'600'000LL;
    EXPECT_EQ(shape({ message(midnight - 1000), message(midnight) }), "DmDm.");
    const auto items = ThreadBuilder::build({ message(midnight - 1000), message(midnight) }, 0);
    EXPECT_EQ(std::get<QString>(items.at(0)), "8 Oct 2025");
    EXPECT_EQ(std::get<QString>(items.at(2)), "9 Oct 2025");
    const auto recent = ThreadBuilder::build({ message(midnight - 1000), message(midnight) }, midnight + 1);
    EXPECT_EQ(std::get<QString>(recent.at(0)) + std::get<QString>(recent.at(2)), "YesterdayToday");
}

TEST(UnifiedBubble, ticksTellHowFarAMessageGot)
{
    EXPECT_EQ(ticks("WHATSAPP", 0), "none ");
    EXPECT_EQ(ticks("WHATSAPP", 1), "single Sent");
    EXPECT_EQ(ticks("WHATSAPP", 2), "single Sent");
    EXPECT_EQ(ticks("WHATSAPP", 3), "double Delivered");
    EXPECT_EQ(ticks("WHATSAPP", 5), "read Read");
    EXPECT_EQ(ticks("LINKEDIN", 0), "word Placed (Placed in browser)");
    EXPECT_EQ(ticks("MESSENGER", -1), "word Placed (Placed in browser)");
    EXPECT_EQ(ticks("INSTAGRAM", 1), "word Sent");
    EXPECT_EQ(ticks("EMAIL", 0), "none ");
    EXPECT_EQ(ticks("EMAIL", 4), "word Sent");
    EXPECT_EQ(ticks("WHATSAPP", 4, "IN"), "none ");
}

TEST(UnifiedBubble, aTitleComesFromTheTextTheFileOrTheKind)
{
    EXPECT_EQ(bubble::mediaTitle(medium("image", {}, " [Image] invoice.png ")), "invoice.png");
    EXPECT_EQ(bubble::mediaTitle(medium("document", "/x/offer.pdf", "[Document]")), "offer.pdf");
    EXPECT_EQ(bubble::mediaTitle(medium("video", {}, "look at this")), "look at this");
    EXPECT_EQ(bubble::mediaTitle(medium("gif", {}, "[GIF]")), "Media");
    for (const QString& word : { "Document", "Video", "Audio", "Sticker", "Image" })
        EXPECT_EQ(bubble::mediaTitle(medium(word.toLower(), {})), word);
    EXPECT_EQ(bubble::mediaTitle(medium("poll", {})), "Media");
}

TEST(UnifiedBubble, aMediumIsHereFetchableOrGone)
{
    using Kind = bubble::MediaState::Kind;
    const TemporaryHome home;
    home.write("media/voice.ogg", "x");
    const QString file = home.path("media/voice.ogg");
    const auto state = [&home](const UnifiedMsgRow& row, const std::optional<MediaDownloadStatus>& download = {}) {
        return bubble::mediaState(row, download, { home.path("media") });
    };
    EXPECT_EQ(state(message(noon)).kind, Kind::None);
    EXPECT_EQ(state(medium("audio", file)).kind, Kind::Ready);
    EXPECT_TRUE(bubble::hasAudio(medium("Audio", file)));
    EXPECT_FALSE(bubble::hasImage(medium("audio", file)));
    EXPECT_FALSE(bubble::hasAudio(medium("audio", file + "x")));
    EXPECT_EQ(state(medium("audio", "/etc/hostname")).kind, Kind::Refused);
    EXPECT_EQ(state(medium("audio", file + "x")).text, "Audio file is missing from local media cache.");
    EXPECT_EQ(state(medium("image", {})).kind, Kind::Download);
    EXPECT_EQ(state(medium("image", {}), MediaDownloadStatus {}).text, "Fetching from WhatsApp...");
    const auto failed = state(medium("image", {}), MediaDownloadStatus { MediaDownloadStatus::Kind::Failed, "gone" });
    EXPECT_EQ(failed.kind, Kind::Failed);
    EXPECT_EQ(failed.text, "gone");
    UnifiedMsgRow elsewhere = medium("image", {});
    elsewhere.platform = "TELEGRAM";
    EXPECT_EQ(state(elsewhere).kind, Kind::Download);
    EXPECT_EQ(state(elsewhere, MediaDownloadStatus {}).text, "Fetching from Telegram...");
}

TEST(UnifiedBubble, whatIsReadAloudIsOneLine)
{
    UnifiedMsgRow voice = medium("audio", {}, "[Audio]");
    EXPECT_EQ(bubble::readableText(voice), "");
    voice.audioTranscript = " see\n you\t tomorrow ";
    EXPECT_EQ(bubble::readableText(voice), "see you tomorrow");
    EXPECT_EQ(bubble::readableText(medium({}, {}, "a \n\n b")), "a b");
}

TEST(ThreadRow, aGroupNamesItsSpeakersOnceARun)
{
    const QList<UnifiedMsgRow> rows { message(noon, "IN", "4917112345678@s.whatsapp.net"),
        message(noon + 1, "IN", "4917112345678@s.whatsapp.net"), message(noon + 2, "OUT"),
        message(noon + 3, "IN", " ") };
    ThreadSurroundings group;
    group.isGroup = true;
    QStringList labels;
    for (const ThreadRow& row : shownRows(rows, group))
        labels.append(row.senderLabel);
    EXPECT_EQ(labels, (QStringList { "", "+4917112345678", "", "", "" }));
    for (const ThreadRow& row : shownRows(rows))
        EXPECT_EQ(row.senderLabel, "") << "two people need no names";
}

TEST(ThreadRow, aChannelIsNamedWhereItChanges)
{
    UnifiedMsgRow mail = message(noon + 1);
    mail.platform = "EMAIL";
    QStringList labels;
    for (const ThreadRow& row : shownRows({ message(noon), message(noon), mail, mail }))
        labels.append(row.channelLabel);
    EXPECT_EQ(labels, (QStringList { "", "WhatsApp", "", "Email", "" }));
    for (const ThreadRow& row : shownRows({ message(noon), message(noon) }))
        EXPECT_EQ(row.channelLabel, "");
}

TEST(ThreadRow, aTextIsShownOnce)
{
    const TemporaryHome home;
    home.write("media/a.png", "x");
    ThreadSurroundings surroundings;
    surroundings.mediaPlaces = [&home](const UnifiedMsgRow&) {
        return QStringList(home.path("media"));
    };
    const auto row = [&surroundings](const UnifiedMsgRow& from) {
        return shownRows({ from }, surroundings).last();
    };
    const ThreadRow here = row(medium("image", home.path("media/a.png"), "[Image] the roof"));
    EXPECT_EQ(here.body, "the roof");
    EXPECT_EQ(here.mediaPath, home.path("media/a.png"));
    const ThreadRow there = row(medium("image", {}, "the roof"));
    EXPECT_EQ(there.body, "");
    EXPECT_EQ(there.mediaTitle, "the roof");
    EXPECT_EQ(there.mediaState, "download");
    const ThreadRow document = row(medium("document", home.path("media/a.png"), "[Document] plan.pdf"));
    EXPECT_EQ(document.body, "");
    EXPECT_EQ(document.mediaTitle, "plan.pdf");
    EXPECT_EQ(document.mediaState, "ready");
    EXPECT_EQ(document.spoken, "Ana, 12:00, Document: plan.pdf");

    surroundings.contactName = "Ana Ruiz";
    EXPECT_EQ(shownRows({ message(noon, "IN", "") }, surroundings).last().spoken, "Ana Ruiz, 12:00: hello");
}

TEST(ThreadRow, theQuotedTailOfAMailIsFoldedAndNotLost)
{
    UnifiedMsgRow mail = message(noon);
    mail.body = "Yes.\n\n> Shall we?";
    const ThreadRow shown = shownRows({ mail })[1];
    EXPECT_EQ(shown.body, "Yes.");
    EXPECT_EQ(shown.quoteLabel, "Show quoted text");
    EXPECT_EQ(shown.quote, "");
    ThreadSurroundings surroundings;
    surroundings.unfolded = { mail.id };
    const ThreadRow whole = shownRows({ mail }, surroundings)[1];
    EXPECT_EQ(whole.quote, "Shall we?");
    EXPECT_EQ(whole.quoteLabel, "Hide quoted text");
    EXPECT_EQ(shownRows({ message(noon) })[1].quoteLabel, "");
    EXPECT_EQ(bubble::readableText(mail), "Yes. > Shall we?");
}

TEST(ThreadRow, aSubjectIsTheTitleWhereItChanges)
{
    QList<UnifiedMsgRow> mails { message(noon), message(noon + 1, "OUT"), message(noon + 2), message(noon + 3),
        message(noon + 4) };
    const QStringList subjects { "Plan", "Re: Plan", "", "RE: Fwd: Plan", "Bill" };
    for (qsizetype i = 0; i < mails.size(); ++i)
        mails[i].subject = subjects[i];
    QStringList shown;
    for (const ThreadRow& row : shownRows(mails).sliced(1))
        shown.append(row.subject);
    EXPECT_EQ(shown, QStringList({ "Plan", "", "", "", "Bill" }));
}

TEST(ThreadRow, aBookIsShownInPartAndCopiedWhole)
{
    const QString book(50'000'000, u'b');
    const UnifiedMsgRow row = medium({}, {}, book);
    const ThreadRow shown = shownRows({ row }).last();
    EXPECT_LT(shown.body.size(), 11'000);
    EXPECT_EQ(shown.moreText, "Show more (49,990,000 characters)");
    EXPECT_LT(shown.spoken.size(), 11'000);
    EXPECT_EQ(bubble::readableText(row), book);

    const UnifiedMsgRow voice = medium("audio", {}, "[Audio] " + book);
    EXPECT_LT(shownRows({ voice }).last().mediaTitle.size(), 11'000);
    const QString page(10'000, u'p');
    EXPECT_EQ(shownRows({ medium({}, {}, page) }).last().body, page);
}
