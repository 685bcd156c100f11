#include "Foundation/Literals.h"
#include "Settings/Appearance.h"
#include "UI/WindowTest.h"

#include <cmath>

namespace corvane {

namespace {

double luminance(const QColor& colour)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other)
{
    const double high = std::max(luminance(one), luminance(other));
    const double low = std::min(luminance(one), luminance(other));
    return (high + 0.05) / (low + 0.05);
}

}

class ThemeTest : public WindowTest {
protected:
    void expectReadable(const char* text, const char* ground)
    {
        const QColor textColour = themeColour(window, text);
        const QColor groundColour = themeColour(window, ground);
        ASSERT_TRUE(textColour.isValid()) << text;
        ASSERT_TRUE(groundColour.isValid()) << ground;
        EXPECT_GE(contrast(textColour, groundColour), 4.5) << text << " on " << ground;
    }

    void expectEveryTextReadable()
    {
        for (const char* ground : { "window", "surface", "raised", "tint" }) {
            for (const char* text : { "text", "soft", "faint", "accent", "good", "warn", "bad", "secret" })
                expectReadable(text, ground);
        }
        expectReadable("accentInk", "accent");
        expectReadable("surface", "text"); // toasts and tooltips use the text colour as background
        expectReadable("ink", "paper");
    }

    QColor avatarColour(const char* function, double hue)
    {
        QColor colour;
        EXPECT_TRUE(
            QMetaObject::invokeMethod(themeObject(window), function, Q_RETURN_ARG(QColor, colour), Q_ARG(double, hue)));
        return colour;
    }

    void expectEveryAvatarReadable()
    {
        for (int hue = 0; hue < 360; hue += 5) {
            const QColor ground = avatarColour("avatarGround", hue / 360.0);
            EXPECT_GE(contrast(avatarColour("avatarText", hue / 360.0), ground), 4.5) << "hue " << hue;
        }
    }
};

TEST_F(ThemeTest, everyTextReachesFourAndAHalfToOneOnEveryGroundInBothThemes)
{
    expectEveryTextReadable();
    expectEveryAvatarReadable();
    const QColor light = themeColour(window, "window");

    desktop.setAppearance(ColourScheme::Dark, true);
    ASSERT_LT(luminance(themeColour(window, "window")), luminance(light));
    expectEveryTextReadable();
    expectEveryAvatarReadable();
}

TEST_F(ThemeTest, theWindowFollowsTheDesktopUntilAPersonDecides)
{
    const QColor light = themeColour(window, "window");
    EXPECT_EQ(picture().pixelColor(2, 2), light);

    desktop.setAppearance(ColourScheme::Dark, true);
    const QColor dark = themeColour(window, "window");
    EXPECT_NE(dark, light);
    EXPECT_EQ(picture().pixelColor(2, 2), dark);

    appearance.setMode(u"light"_s);
    EXPECT_EQ(picture().pixelColor(2, 2), light);
}

}
