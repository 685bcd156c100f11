#include "Platform/Linux/Bus/XdgDesktop.h"

#include "Platform/SettingsPortal.h"
#include "Support/Await.h"
#include "Support/Environment.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/PrivateBus.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPalette>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

constexpr uint preferDark = 1;
constexpr uint preferLight = 2;

class DesktopTest : public testing::Test {
protected:
    DesktopTest() { QGuiApplication::setDesktopFileName("com.nimb.corvane"); }
    ~DesktopTest() override
    {
        QGuiApplication::setDesktopFileName(QString());
        QGuiApplication::setPalette(QPalette());
    }

    static void setWindowColour(const QColor& colour)
    {
        QPalette palette;
        palette.setColor(QPalette::Window, colour);
        QGuiApplication::setPalette(palette);
        QCoreApplication::processEvents();
    }

    PrivateBus privateBus;
    QDBusConnection bus = privateBus.connect();
    QDBusConnection desktopBus = privateBus.connect();
};

}

TEST_F(DesktopTest, theAppearanceFollowsThePortal)
{
    SettingsPortal portal(desktopBus,
        { { "org.freedesktop.appearance/color-scheme", preferDark },
            { "org.gnome.desktop.interface/enable-animations", false } });
    XdgDesktop desktop(bus, 027);
    int changes = 0;
    QObject::connect(&desktop, &Desktop::appearanceChanged, [&] { ++changes; });
    EXPECT_EQ(desktop.colourScheme(), ColourScheme::Light) << "nothing waits for the portal";
    EXPECT_FALSE(desktop.prefersReducedMotion());
    privateBus.settle();
    EXPECT_EQ(desktop.colourScheme(), ColourScheme::Dark);
    EXPECT_TRUE(desktop.prefersReducedMotion());
    EXPECT_EQ(changes, 2);
    portal.change("org.freedesktop.appearance", "color-scheme", preferDark);
    portal.change("org.gnome.desktop.interface", "enable-animations", false);
    portal.change("org.gnome.desktop.other", "enable-animations", true);
    portal.change("org.gnome.desktop.interface", "other", true);
    privateBus.settle();
    EXPECT_EQ(changes, 2) << "nothing of it is new";
    EXPECT_TRUE(desktop.prefersReducedMotion());

    portal.change("org.freedesktop.appearance", "color-scheme", preferLight);
    portal.change("org.freedesktop.appearance", "accent-color", 1.0);
    portal.change("org.gnome.desktop.interface", "color-scheme", "prefer-dark");
    privateBus.settle();
    EXPECT_EQ(desktop.colourScheme(), ColourScheme::Light);
    EXPECT_EQ(changes, 3);
    setWindowColour(Qt::black);
    EXPECT_EQ(desktop.colourScheme(), ColourScheme::Light) << "what the person chose counts before the palette";
    portal.change("org.freedesktop.appearance", "color-scheme", 0U);
    portal.change("org.gnome.desktop.interface", "enable-animations", true);
    privateBus.settle();
    EXPECT_EQ(desktop.colourScheme(), ColourScheme::Dark) << "without a choice the palette decides";
    EXPECT_FALSE(desktop.prefersReducedMotion());
    EXPECT_EQ(changes, 5);
}

TEST_F(DesktopTest, aPortalMayComeLate)
{
    XdgDesktop desktop(bus, 027);
    privateBus.settle();
    EXPECT_EQ(desktop.colourScheme(), ColourScheme::Light);
    const SettingsPortal portal(desktopBus, { { "org.freedesktop.appearance/color-scheme", preferDark } });
    privateBus.settle();
    EXPECT_EQ(desktop.colourScheme(), ColourScheme::Dark);
    EXPECT_FALSE(desktop.prefersReducedMotion()) << "a setting that the portal does not know says nothing";
}

TEST_F(DesktopTest, filesAreChosenInTheDesktopsWindowAndWithoutOneThePersonIsTold)
{
    XdgDesktop desktop(bus, 027);
    XdgDesktop alone(noBus(), 027);
    QStringList told;
    const auto choose = [&](XdgDesktop& where) {
        QObject context;
        where.chooseFiles("Attach files", &context, [&](const Result<QList<QUrl>>& files) {
            told.append(files ? QUrl::toStringList(*files).join(' ') : files.error().message);
        });
        privateBus.settle();
    };
    const QString none = "This desktop has no window to choose files in. Drag them here, or paste them.";
    choose(alone);
    choose(desktop);
    EXPECT_EQ(std::exchange(told, {}), QStringList({ none, none }));
    {
        const FilePortal portal(desktopBus, 0, { "file:///tmp/a%20b.pdf", "file:///c" });
        choose(desktop);
        EXPECT_EQ(portal.asked, QStringList("Attach files: several file"));
    }
    const FilePortal portal(desktopBus, 1, { "file:///c" });
    choose(desktop);
    EXPECT_EQ(told, QStringList({ "file:///tmp/a b.pdf file:///c", "" })) << "the second time the person gave up";
}

TEST_F(DesktopTest, aFolderIsChosenTheSameWay)
{
    XdgDesktop desktop(bus, 027);
    QStringList told;
    const auto choose = [&] {
        QObject context;
        desktop.chooseFolder("Where", &context, [&](const Result<QList<QUrl>>& folder) {
            told.append(folder ? QUrl::toStringList(*folder).join(' ') : folder.error().message);
        });
        privateBus.settle();
    };
    choose();
    const FilePortal portal(desktopBus, 0, { "file:///tmp" });
    choose();
    EXPECT_EQ(told, QStringList({ "This desktop has no window to choose a folder in. Type its path.", "file:///tmp" }));
    EXPECT_EQ(portal.asked, QStringList("Where: one folder"));
}

TEST_F(DesktopTest, withoutABusThePaletteDecidesAndBadgesGoNowhere)
{
    XdgDesktop desktop(noBus(), 027);
    int changes = 0;
    QObject::connect(&desktop, &Desktop::appearanceChanged, [&] { ++changes; });
    desktop.setBadge(3);
    setWindowColour(QColor(30, 30, 30));
    EXPECT_EQ(desktop.colourScheme(), ColourScheme::Dark);
    setWindowColour(QColor(31, 31, 31));
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(desktop.hostName().isEmpty());
}

TEST_F(DesktopTest, theBadgeReachesDocksThatAreThereAndThoseThatComeLater)
{
    XdgDesktop desktop(bus, 027);
    desktop.setBadge(7);
    privateBus.settle();
    {
        const Dock dock(desktopBus);
        privateBus.settle();
        desktop.setBadge(7);
        desktop.setBadge(120);
        desktop.setBadge(0);
        privateBus.settle();
        EXPECT_EQ(dock.updates.join(u'\n'),
            "application://com.nimb.corvane.desktop 7 visible\n"
            "application://com.nimb.corvane.desktop 120 visible\n"
            "application://com.nimb.corvane.desktop 0 hidden");
    }
    QGuiApplication::setDesktopFileName(QString());
    const Dock dock(desktopBus);
    desktop.setBadge(1);
    privateBus.settle();
    EXPECT_TRUE(dock.updates.isEmpty()) << "a dock knows programs by their desktop entry only";
}

TEST_F(DesktopTest, onlyWebAddressesAreHandedToTheBrowser)
{
    const QTemporaryDir folder;
    QFile script(folder.filePath("xdg-open"));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s|' \"$#\" \"$1\" \"$(umask)\" > \"$0.part\" && mv \"$0.part\" \"$0.opened\"\n");
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    Environment environment { { "PATH", QFile::encodeName(folder.path()) + ':' + qgetenv("PATH") } };

    XdgDesktop desktop(noBus(), 027);
    LogCapture log;
    desktop.openInBrowser(QUrl("file:///etc/passwd"));
    desktop.openInBrowser(QUrl("https://nimb.test/login?callback=nimb-companion%3A%2F%2Fauth&deviceName=a b;$(x)"));
    const auto handedOver = [&] {
        QFile file(script.fileName() + ".opened");
        EXPECT_TRUE(await([&] { return file.open(QIODevice::ReadOnly); }));
        const QString arguments = QString::fromUtf8(file.readAll());
        file.remove();
        return arguments;
    };
    EXPECT_EQ(
        handedOver(), "1|https://nimb.test/login?callback=nimb-companion%3A%2F%2Fauth&deviceName=a%20b;$(x)|0027|");
    EXPECT_EQ(log.lines(), QStringList("Desktop.openInBrowser: not a web address: file:///etc/passwd"));
    EXPECT_TRUE(desktop.openFile("/a folder/-x #1.pdf"));
    EXPECT_EQ(handedOver(), "1|file:///a%20folder/-x%20%231.pdf|0027|");
    EXPECT_TRUE(desktop.openLink(QUrl("whatsapp://send?phone=49171")));
    EXPECT_EQ(handedOver(), "1|whatsapp://send?phone=49171|0027|");

    environment.set("PATH", "/nonexistent");
    EXPECT_FALSE(desktop.openFile("/a.pdf"));
    desktop.openInBrowser(QUrl("https://nimb.test"));
    EXPECT_TRUE(log.contains("xdg-open does not start"));
}
