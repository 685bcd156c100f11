#include "Terminals/TerminalFontSize.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace corvane {

TEST(TerminalFontSize, theLastSizeIsKeptWithinItsLimits)
{
    const TemporaryHome home;
    UserDefaults defaults(home.paths().defaultsFile);
    TerminalFontSize size(defaults);
    int changes = 0;
    QObject::connect(&size, &TerminalFontSize::changed, [&] { ++changes; });
    EXPECT_EQ(size.pixels(), 14);
    size.reset();
    EXPECT_EQ(changes, 0) << "it is the usual one already";
    size.enlarge(2);
    EXPECT_EQ(size.pixels(), 16);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(TerminalFontSize(defaults).pixels(), 16);
    size.enlarge(100);
    EXPECT_EQ(size.pixels(), 40);
    size.enlarge(1);
    EXPECT_EQ(changes, 2) << "it is the largest";
    size.enlarge(-100);
    EXPECT_EQ(size.pixels(), 8);
    size.reset();
    EXPECT_EQ(TerminalFontSize(defaults).pixels(), 14);
    for (const auto& [stored, shown] : { std::pair(3, 8), std::pair(4000, 40) }) {
        defaults.setInteger(u"Corvane.terminal.fontSize"_s, stored);
        EXPECT_EQ(TerminalFontSize(defaults).pixels(), shown) << "of an edited file";
    }
}

}
