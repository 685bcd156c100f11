#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Shell/ContentView.h"
#include "UI/WindowTest.h"

#include <QAccessible>
#include <QQmlProperty>

namespace corvane {

class AccessibilityTest : public WindowTest {
protected:
    static bool isControl(QQuickItem* item)
    {
        return item->inherits("QQuickAbstractButton") || item->inherits("QQuickTextInput")
            || item->inherits("QQuickListView") || item->activeFocusOnTab();
    }

    /// Checks that every visible control has an accessible name and a role.
    void expectNames(const QString& screen)
    {
        rest();
        int controls = 0;
        for (QQuickItem* item : visibleItems()) {
            if (!isControl(item) || item->width() < 1 || item->height() < 1)
                continue;
            ++controls;
            QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(item);
            ASSERT_NE(spoken, nullptr);
            EXPECT_NE(spoken->text(QAccessible::Name), QString())
                << qPrintable(screen) << ": " << item->metaObject()->className() << ' '
                << qPrintable(item->objectName());
            EXPECT_NE(spoken->role(), QAccessible::NoRole)
                << qPrintable(screen) << ": " << item->metaObject()->className() << ' '
                << qPrintable(item->objectName());
        }
        EXPECT_GT(controls, 3) << qPrintable(screen);
    }

    /// Checks that no control extends beyond the window and no button is narrower than its content.
    void expectInside(const QString& screen)
    {
        rest();
        const QRectF frame(QPointF(), window.window()->contentItem()->size());
        for (QQuickItem* item : visibleItems()) {
            if (!isControl(item) || scrolls(item))
                continue;
            const QRectF place = item->mapRectToScene(item->boundingRect());
            EXPECT_TRUE(frame.contains(place)) << qPrintable(screen) << ": " << item->metaObject()->className() << ' '
                                               << qPrintable(item->objectName()) << ' ' << place.x() << ',' << place.y()
                                               << ' ' << place.width() << 'x' << place.height();
            if (item->inherits("QQuickAbstractButton"))
                EXPECT_GE(item->width() + 0.5, item->implicitWidth())
                    << qPrintable(screen) << ": " << qPrintable(item->objectName());
        }
    }

    static bool scrolls(QQuickItem* item)
    {
        for (QQuickItem* above = item->parentItem(); above; above = above->parentItem()) {
            if (above->inherits("QQuickFlickable"))
                return true;
        }
        return false;
    }

    void visitScreens(const std::function<void(const QString&)>& visit)
    {
        visit(u"wall"_s);
        showInbox();
        visit(u"list"_s);
        press(Qt::Key_Down);
        visit(u"thread"_s);
        inbox.filters()->setChannelFilter(u"WHATSAPP"_s);
        inbox.actions()->bulk()->all();
        visit(u"picked rows under a filter"_s);
        inbox.actions()->bulk()->clear();
        inbox.filters()->setChannelFilter({});
        inbox.setShowPalette(true);
        visit(u"palette"_s);
        inbox.setShowPalette(false);
        press(Qt::Key_F1);
        visit(u"shortcuts"_s);
        press(Qt::Key_Escape);
        shell.selectHub(u"gtm"_s);
        visit(u"hub"_s);
        shell.openSettings();
        for (const auto& section : settings.sections()) {
            settings.setSection(section.id);
            visit(settings.section());
        }
        settings.setSection(u"nowhere"_s);
        EXPECT_EQ(settings.section(), settings.sections().last().id);
    }

    /// The number of pixels in and around the item that have the accent colour.
    int accentAround(QQuickItem* item, const QImage& image)
    {
        const QRect place
            = item->mapRectToScene(item->boundingRect()).adjusted(-6, -6, 6, 6).toRect().intersected(image.rect());
        const QRgb accent = themeColour(window, "accent").rgb();
        int count = 0;
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= place.right(); ++x)
                count += image.pixel(x, y) == accent ? 1 : 0;
        }
        return count;
    }

    qreal paneScroll()
    {
        QQuickItem* view = findItem(u"contact.view"_s);
        return view ? view->property("contentY").toDouble() : 0;
    }

    /// Presses Tab until a stop repeats. Checks that the accent colour appears at each stop.
    void expectFocusVisible(const QString& screen)
    {
        QSet<QQuickItem*> stops;
        QImage before = picture();
        qreal scroll = paneScroll();
        for (int i = 0; i < 80; ++i) {
            press(Qt::Key_Tab);
            QQuickItem* stop = focused();
            ASSERT_NE(stop, nullptr) << qPrintable(screen);
            if (stops.contains(stop))
                break;
            stops.insert(stop);
            const QImage now = picture();
            // If the pane scrolled to reveal the stop, the previous picture shows something else in its place.
            const bool moved = std::exchange(scroll, paneScroll()) != scroll;
            EXPECT_GT(accentAround(stop, now), (moved ? 0 : accentAround(stop, before)) + 20) << qPrintable(
                screen) << ": " << stop->metaObject()->className() << ' ' << qPrintable(stop->objectName());
            before = now;
        }
        EXPECT_GT(stops.size(), 3) << qPrintable(screen);
    }
};

TEST_F(AccessibilityTest, everyControlHasANameAndARole)
{
    visitScreens([this](const QString& screen) { expectNames(screen); });
}

TEST_F(AccessibilityTest, nothingIsCutInTheSmallestWindow)
{
    window.window()->resize(1040, 660);
    visitScreens([this](const QString& screen) { expectInside(screen); });
}

TEST_F(AccessibilityTest, theKeyboardsPlaceShowsAtEveryStop)
{
    expectFocusVisible(u"wall"_s);
    showInbox();
    press(Qt::Key_Down);
    expectFocusVisible(u"inbox"_s);
    shell.openSettings();
    rest();
    expectFocusVisible(u"settings"_s);
}

TEST_F(AccessibilityTest, aRowReadsAsOneSentence)
{
    showInbox();
    QQuickItem* row = item(u"contact:ct:EMAIL:bakery@example.com"_s);
    ASSERT_NE(row, nullptr);
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(row);
    EXPECT_EQ(spoken->role(), QAccessible::ListItem);
    const QString sentence = spoken->text(QAccessible::Name);
    for (const QString& part : { u"Bäckerei Sonnenschein"_s, u"1 unread"_s, u"Invoice 2024-118 attached"_s })
        EXPECT_TRUE(sentence.contains(part)) << qPrintable(sentence);
}

}
