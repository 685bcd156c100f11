#include "Foundation/Ids.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Foundation/WAName.h"
#include "Support/Print.h"

#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

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
