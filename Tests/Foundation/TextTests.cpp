#include "Foundation/Channel.h"
#include "Foundation/Ids.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Foundation/Text.h"
#include "Foundation/WAName.h"
#include "Support/Print.h"

#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>
#include <limits>
#include <tuple>

using namespace corvane;

TEST(Text, whatAPersonTypesIsFoundWithoutItsMarksAndCase)
{
    EXPECT_EQ(folded("Žofie ÉCOLE"), "zofie ecole");
    EXPECT_EQ(folded("e\u0301"), folded("É"));
    EXPECT_EQ(folded("ﬁn"), "fin");
    EXPECT_EQ(folded("東京 😀"), "東京 😀");
    EXPECT_EQ(singleLine(" a\r\n\t b\u00A0 c "), "a b c");
}

TEST(Text, aCharacterIsNeverCut)
{
    EXPECT_EQ(firstCharacters("👩‍👩‍👧x", 1), "👩‍👩‍👧");
    EXPECT_EQ(firstCharacters("e\u0301a", 1), "e\u0301");
    EXPECT_EQ(firstCharacters("😀😀😀", 2), "😀😀");
    EXPECT_EQ(firstCharacters("abc", 0), QString());
    EXPECT_EQ(firstCharacters("abc", 3), "abc");
    EXPECT_EQ(firstCharacters(QString(), 5), QString());
    EXPECT_EQ(firstCharacters("a\r\nb", 2), "a\r\n");
    EXPECT_EQ(firstCharacters(u"Ж\u0483x"_s, 1), u"Ж\u0483"_s);
    EXPECT_EQ(firstCharacters(u"“\u20DDx"_s, 1), u"“\u20DD"_s);
    EXPECT_EQ(firstCharacters(u"会\uFE00x"_s, 1), u"会\uFE00"_s);
    EXPECT_EQ(firstCharacters("Жα“会é", 4), "Жα“会");
    const QString family = "👩‍👩‍👧";
    EXPECT_EQ(firstCharacters(family.repeated(60), 50), family.repeated(50)) << "longer than what is looked at first";
}

TEST(Text, aPromptLineIsOneLine)
{
    EXPECT_EQ(promptLine(" \n a\tb\r\nc\u2028d \t"), "a b  c d");
    EXPECT_EQ(promptLine(" abc ", 3), "abc");
    EXPECT_EQ(promptLine("ab c", 3), "ab ...");
    EXPECT_EQ(promptLine("\n", 3), QString());
    EXPECT_EQ(promptLine(u'a' + QString(1000, QChar(0x301)), 3).size(), 3 * 16 + 3) << "one character of 1001 units";
    const QString clefs = u'a' + QString::fromUcs4(U"\U0001D165").repeated(500);
    EXPECT_TRUE(promptLine(clefs, 3).toUtf8().endsWith("\U0001D165...")) << "no half of a character";
}

TEST(Text, aSentenceBeginsWithACapital)
{
    EXPECT_EQ(atStart("élan and more"), "Élan and more");
    EXPECT_EQ(atStart(QString()), QString());
}

TEST(Channel, aWordInARowStandsForANetwork)
{
    for (const auto& [channel, raw, label] : { std::tuple(Channel::WhatsApp, "WHATSAPP", "WhatsApp"),
             std::tuple(Channel::Email, "EMAIL", "Email"), std::tuple(Channel::IMessage, "IMESSAGE", "iMessage") }) {
        EXPECT_EQ(channelRaw(channel), raw);
        EXPECT_EQ(channelFromRaw(QString::fromLatin1(raw)), channel);
        EXPECT_EQ(channelLabel(raw), label);
    }
    EXPECT_EQ(channelFromRaw(std::nullopt), Channel::WhatsApp);
    EXPECT_EQ(channelFromRaw(u"email"_s), Channel::WhatsApp);
    EXPECT_EQ(channelLabel("CARRIER pigeon-2x"), "Carrier Pigeon-2x");
}

TEST(Ids, haveTheShapesThatRowsAreFoundBy)
{
    const QRegularExpression shape("^od:1760000000000:[1-9][0-9]{3}$");
    QSet<QString> stamped;
    for (int i = 0; i < 200; ++i) {
        const QString id = stampedId("od", 1'760'000'000'000);
        EXPECT_TRUE(shape.match(id).hasMatch()) << qPrintable(id);
        stamped.insert(id);
    }
    EXPECT_EQ(stamped.size(), 200);
    // A "%1" in external input is kept as it is.
    EXPECT_EQ(contactId("EMAIL", "a%1@b"), "ct:EMAIL:a%1@b");
    EXPECT_EQ(contactIdentityId("SMS", "+49"), "id:SMS:+49");
    EXPECT_EQ(conversationId("work", "x:%2"), "wa:work:x:%2");
    EXPECT_EQ(messageId("m"), "wa:msg:m");
    EXPECT_EQ(uuidText().size(), 36);
    EXPECT_EQ(uuidText().toLower().count(u'-'), 4);
    EXPECT_NE(uuidText(), uuidText());
}

TEST(Json, onlyAWholeObjectIsOne)
{
    for (const char* text : { "", "[]", "3", "{", "{}x", "{\"a\":}", "\xff{}" })
        EXPECT_EQ(jsonObject(text), std::nullopt) << text;
    const auto object = jsonObject("{\"b\":null,\"a\":\"ü\\n\",\"c\":5}");
    ASSERT_TRUE(object);
    EXPECT_EQ(textValue(*object, "a"_L1), "ü\n");
    EXPECT_EQ(textValue(*object, "b"_L1), std::nullopt);
    EXPECT_EQ(textValue(*object, "c"_L1), std::nullopt);
    EXPECT_EQ(textValue(*object, "d"_L1), std::nullopt);
    EXPECT_EQ(compactJson(*object), "{\"a\":\"ü\\n\",\"b\":null,\"c\":5}");
}

TEST(Json, aNumberIsWholeAndFitsAndAListHoldsTextAlone)
{
    const auto object = jsonObject(R"({"half":-3.9,"large":9007199254740993,"huge":1e19,"least":-9223372036854775808,
        "limit":9.3e18,"text":"7","whole":5.0,"texts":["a","b"],"none":[],"mixed":["a",1]})");
    ASSERT_TRUE(object);
    EXPECT_EQ(truncatedNumber(*object, "half"_L1), -3);
    EXPECT_EQ(truncatedNumber(*object, "large"_L1), 9007199254740993);
    EXPECT_EQ(truncatedNumber(*object, "least"_L1), std::numeric_limits<qint64>::min());
    for (const auto key : { "huge"_L1, "limit"_L1, "text"_L1, "missing"_L1 })
        EXPECT_EQ(truncatedNumber(*object, key), std::nullopt) << key.data();
    EXPECT_EQ(wholeNumber(*object, "half"_L1), std::nullopt);
    EXPECT_EQ(wholeNumber(*object, "whole"_L1), 5);
    EXPECT_EQ(textsValue(*object, "texts"_L1), (QStringList { "a", "b" }));
    EXPECT_EQ(textsValue(*object, "none"_L1), QStringList());
    EXPECT_EQ(textsValue(*object, "mixed"_L1), std::nullopt);
    EXPECT_EQ(textsValue(*object, "text"_L1), std::nullopt);
}

TEST(WAName, rawAddressesBecomeWords)
{
    const std::pair<QString, QString> cases[] {
        { "", "Unknown" },
        { "  ", "Unknown" },
        { "Unknown", "Unknown" },
        { " Ana Ruiz ", "Ana Ruiz" },
        { "120363041234567@newsletter", "Channel 4567" },
        { "@newsletter", "Channel" },
        { "status@broadcast", "Broadcast atus" },
        { "491711234-1600000000@g.us", "Group chat 0000" },
        { "@g.us", "Group chat" },
        { "987654321@lid", "WhatsApp user 4321" },
        { "12@lid", "WhatsApp user 12" },
        { "@lid", "WhatsApp user" },
        { "4917112345678@s.whatsapp.net", "+4917112345678" },
        { "4917112345678@c.us", "+4917112345678" },
        { "4917112345678:12@s.whatsapp.net", "+4917112345678" },
        { "@s.whatsapp.net", "WhatsApp user" },
        { "a@b@g.us", "WhatsApp user a" },
        { "jane@example.com", "jane@example.com" },
        { "Ana @ work", "Ana @ work" },
        { "@ana", "@ana" },
    };
    for (const auto& [name, shown] : cases)
        EXPECT_EQ(WAName::pretty(name), shown) << name.toStdString();
}
