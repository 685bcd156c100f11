#include "Foundation/Literals.h"
#include "Foundation/Redaction.h"
#include "Support/Print.h"

#include <gtest/gtest.h>

namespace corvane {

TEST(Redaction, secretsAreMaskedAndTheRestStays)
{
    const std::pair<QString, QString> texts[] = {
        { u" password: hunter22 "_s, u"password=[redacted]"_s },
        { u"password: abc"_s, u"password: abc"_s },
        { u"api-key = 'abcdef'"_s, u"api-key=[redacted]'"_s },
        { u"Authorization: Bearer abc.def"_s, u"Authorization: Bearer [redacted]"_s },
        { u"key sk-abcdefghijklmnopqrst."_s, u"key [redacted-api-key]."_s },
        { u"export GITHUB_TOKEN=ghp_1 next"_s, u"export GITHUB_TOKEN=[redacted] next"_s },
        { u"MY_SECRET=\"two words\" x"_s, u"MY_SECRET=[redacted] x"_s },
        { u"PATH=/usr/bin"_s, u"PATH=/usr/bin"_s },
        { u"Authorization: Basic YW5h or\nnext"_s, u"Authorization: Basic [redacted]\nnext"_s },
        { u"Cookie: a=eyJhbGciOi.eyJzdWIi.c2ln; b=\"c d\"; e=f\nnext"_s, u"Cookie: [redacted]\nnext"_s },
        { u"Authorization: Basic abc TOKEN='d e' f"_s, u"Authorization: Basic [redacted]"_s },
        { u"{\"Cookie\": \"sid=1; a=2\", \"n\": 1}"_s, u"{\"Cookie\": \"[redacted]\", \"n\": 1}"_s },
        { u"{\"password\":\"a \\\" b\",\"n\":1}"_s, u"{\"password\":\"[redacted]\",\"n\":1}"_s },
        { u"{\\\"password\\\":\\\"a b\\\"}"_s, u"{\\\"password\\\":\\\"[redacted]\\\"}"_s },
        { u"https://ana:p@ss@x.example/a?page=2&access_token=t#code=c"_s,
            u"https://[redacted]@x.example/a?page=2&access_token=[redacted]#code=[redacted]"_s },
        { u"got eyJhbGciOi.eyJzdWIi.c2ln!"_s, u"got [redacted-token]!"_s },
    };
    for (const auto& [text, expected] : texts) {
        EXPECT_EQ(redactSensitive(text), expected);
        EXPECT_EQ(redactSensitive(expected), expected) << "masking again changes nothing";
    }
    const QStringList known { u"it's \"5%\" off"_s, u"abc"_s };
    EXPECT_EQ(redactSensitive(u"abc: it's \"5%\" off | it%27s%20%225%25%22%20off | it's \\\"5%\\\" off"_s, known),
        u"abc: [redacted] | [redacted] | [redacted]"_s);
}

}
