#include "AI/ModelChoice.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(ModelChoice, isKeptTrimmedAndAnEmptyPartIsForgotten)
{
    const TemporaryHome home;
    UserDefaults defaults(home.paths().defaultsFile);
    EXPECT_EQ(modelChoice(defaults), SystemLanguageModel::Choice());
    setModelChoice(defaults, { u" http://127.0.0.1:1 "_s, u"fake:1b"_s, u"fake:1b"_s });
    EXPECT_EQ(
        modelChoice(defaults), (SystemLanguageModel::Choice { u"http://127.0.0.1:1"_s, u"fake:1b"_s, u"fake:1b"_s }));
    setModelChoice(defaults, { u"http://127.0.0.1:2"_s, u" "_s, {} });
    EXPECT_EQ(defaults.text(u"nimb.localModelUrl"_s), u"http://127.0.0.1:2"_s);
    EXPECT_EQ(defaults.text(u"nimb.localModel"_s), std::nullopt);
    EXPECT_EQ(defaults.text(u"nimb.localModelElsewhere"_s), std::nullopt);
}
