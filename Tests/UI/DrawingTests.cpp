#include "Foundation/Literals.h"
#include "Support/EngineWorld.h"
#include "Support/Print.h"
#include "UI/Controls/WindowLayout.h"
#include "UI/Settings/QrItem.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace corvane {

namespace {

QImage drawn(QrItem& item)
{
    QImage image(item.size().toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    item.paint(&painter);
    return image;
}

}

TEST(QrItem, drawsTheThreeCornersInWholePixelsAndFollowsItsText)
{
    QrItem item;
    item.setSize(QSizeF(240, 240));
    item.setInk(Qt::black);
    item.setText(u"2@first"_s);
    ASSERT_TRUE(item.valid());
    const QImage first = drawn(item);
    // A version 1 code has 21 modules of 11 pixels each here, with a margin of 4 pixels. A corner pattern is 7 modules
    // wide and dark, with a light ring.
    for (const QPoint corner : { QPoint(4, 4), QPoint(4 + 14 * 11, 4), QPoint(4, 4 + 14 * 11) }) {
        EXPECT_EQ(first.pixelColor(corner + QPoint(1, 1)), QColor(Qt::black));
        EXPECT_EQ(first.pixelColor(corner + QPoint(12, 12)), QColor(Qt::white));
        EXPECT_EQ(first.pixelColor(corner + QPoint(38, 38)), QColor(Qt::black));
    }
    item.setText(u"2@other"_s);
    EXPECT_NE(drawn(item), first);
}

TEST(QrItem, aTextThatFitsNoCodeDrawsNothing)
{
    QrItem item;
    item.setSize(QSizeF(100, 100));
    item.setText(QString(8000, u'x'));
    EXPECT_FALSE(item.valid());
    item.setText({});
    EXPECT_FALSE(item.valid());
    EXPECT_EQ(drawn(item).pixelColor(50, 50), QColor(Qt::white));
}

TEST(WindowLayout, remembersWhatItWasToldAndHoldsItWithinReason)
{
    const TemporaryHome home;
    const QSize screen(1920, 1080);
    {
        UserDefaults defaults(home.paths().defaultsFile);
        WindowLayout layout(defaults);
        EXPECT_EQ(layout.listWidth(), 340);
        EXPECT_EQ(layout.contactWidth(), 320);
        EXPECT_EQ(layout.windowSize(screen), QSize(1320, 820));
        EXPECT_EQ(layout.windowSize({ 1358, 728 }), QSize(1320, 728)) << "a small screen holds the whole window";
        EXPECT_FALSE(layout.hasWindowSize());
        EXPECT_TRUE(layout.sectionOpen(u"actions"_s));
        layout.setListWidth(400);
        layout.setContactWidth(5);
        layout.setSectionOpen(u"actions"_s, false);
        layout.setWindowSize({ 1500, 900 });
    }
    UserDefaults defaults(home.paths().defaultsFile);
    WindowLayout layout(defaults);
    EXPECT_EQ(layout.listWidth(), 400);
    EXPECT_EQ(layout.contactWidth(), 280);
    EXPECT_EQ(layout.windowSize(screen), QSize(1500, 900));
    EXPECT_FALSE(layout.sectionOpen(u"actions"_s));
    EXPECT_EQ(defaults.boolean(u"nimb.inbox.inspector.actions.open"_s), false);

    layout.setWindowSize({ 1090, 900 });
    EXPECT_EQ(layout.windowSize(screen), QSize(1320, 820));
    defaults.setText(u"Corvane.window.listWidth"_s, u"garbage"_s);
    EXPECT_EQ(layout.listWidth(), 340);
    defaults.setInteger(u"Corvane.window.listWidth"_s, 9'999'999'999);
    EXPECT_EQ(layout.listWidth(), 460);
}

}
