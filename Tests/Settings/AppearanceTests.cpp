#include "Foundation/Literals.h"
#include "Settings/Appearance.h"

#include "Foundation/UserDefaults.h"
#include "Support/FakeDesktop.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

TEST(AppearanceSetting, followsTheDesktopUntilItIsSetByHand)
{
    const TemporaryHome home;
    UserDefaults defaults(home.paths().defaultsFile);
    FakeDesktop desktop;
    Appearance appearance(desktop, defaults);
    QSignalSpy changes(&appearance, &Appearance::changed);
    EXPECT_FALSE(appearance.dark());
    desktop.setAppearance(ColourScheme::Dark, true);
    EXPECT_TRUE(appearance.dark());
    EXPECT_TRUE(appearance.reducedMotion());
    EXPECT_EQ(changes.size(), 1);

    appearance.setMode(u"light"_s);
    EXPECT_FALSE(appearance.dark());
    EXPECT_EQ(changes.size(), 2);
    appearance.setMode(u"light"_s);
    EXPECT_EQ(changes.size(), 2);
    appearance.setMode(u"purple"_s);
    EXPECT_EQ(appearance.mode(), "light");
    EXPECT_FALSE(Appearance(desktop, defaults).dark()) << "remembered at the next start";

    appearance.setMode(u"dark"_s);
    desktop.setAppearance(ColourScheme::Light, false);
    EXPECT_TRUE(appearance.dark());
    EXPECT_FALSE(appearance.reducedMotion());
    appearance.setMode(u"desktop"_s);
    EXPECT_FALSE(appearance.dark());
    EXPECT_EQ(appearance.modes(),
        (QList<Choice> { { "desktop", "Like the desktop" }, { "light", "Light" }, { "dark", "Dark" } }));

    defaults.setText(u"Corvane.appearance"_s, u"purple"_s);
    EXPECT_EQ(Appearance(desktop, defaults).mode(), "desktop");
}

}
