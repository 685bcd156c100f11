#include "Foundation/Literals.h"
#include "Platform/Linux/Tray/StatusNotifierTray.h"

#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Tray/TrayIcon.h"
#include "Platform/TrayPanel.h"
#include "Support/Await.h"
#include "Support/Print.h"
#include "Support/PrivateBus.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

class TrayTest : public testing::Test {
protected:
    QDBusMessage ask(const BusObject& object, const QString& method, const QVariantList& arguments)
    {
        QDBusMessage answer;
        QObject context;
        callAsync(
            panelBus, object.method(method, arguments), &context, [&](const QDBusMessage& reply) { answer = reply; });
        EXPECT_TRUE(await([&] { return answer.type() != QDBusMessage::InvalidMessage; }));
        return answer;
    }

    QDBusMessage askItem(const QString& method, const QVariantList& arguments)
    {
        return ask({ service, "/StatusNotifierItem", "org.kde.StatusNotifierItem" }, method, arguments);
    }

    QDBusMessage askMenu(const QString& method, const QVariantList& arguments)
    {
        return ask({ service, "/MenuBar", "com.canonical.dbusmenu" }, method, arguments);
    }

    QVariant itemProperty(const QString& name)
    {
        return firstValue(ask({ service, "/StatusNotifierItem", "org.freedesktop.DBus.Properties" }, "Get",
            { "org.kde.StatusNotifierItem", name }));
    }

    /// The menu items, as read by the panel.
    QList<MenuProperties> menuItems()
    {
        const QDBusMessage reply = askMenu("GetLayout", { 0, -1, QStringList() });
        EXPECT_EQ(reply.signature(), "u(ia{sv}av)");
        QList<MenuProperties> items;
        for (const QDBusVariant& child : qdbus_cast<MenuLayout>(reply.arguments().value(1)).children) {
            const auto layout = qdbus_cast<MenuLayout>(child.variant());
            items.append({ layout.id, layout.properties });
        }
        return items;
    }

    QDBusMessage click(int id) { return askMenu("Event", { id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0U }); }

    PrivateBus privateBus;
    QDBusConnection bus = privateBus.connect();
    QDBusConnection panelBus = privateBus.connect();
    const QString service = u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid());
};

}

TEST_F(TrayTest, theIconIsShownOnlyWhileAPanelDrawsIt)
{
    StatusNotifierTray tray(bus);
    QString changes;
    QObject::connect(&tray, &Tray::shownChanged, [&] { changes += tray.isShown() ? '+' : '-'; });
    privateBus.settle();
    EXPECT_FALSE(tray.isShown());
    {
        TrayPanel panel(panelBus, false);
        privateBus.settle();
        EXPECT_EQ(panel.item, service);
        EXPECT_FALSE(tray.isShown()) << "nobody draws what this watcher collects";
        panel.setHasHost(true);
        privateBus.settle();
        EXPECT_TRUE(tray.isShown());
        panel.setHasHost(false);
        privateBus.settle();
        EXPECT_FALSE(tray.isShown());
        panel.setHasHost(true);
        privateBus.settle();
    }
    privateBus.settle();
    EXPECT_FALSE(tray.isShown());
    const TrayPanel next(panelBus);
    privateBus.settle();
    EXPECT_EQ(next.item, service);
    EXPECT_EQ(changes, "+-+-+");
}

TEST_F(TrayTest, aPanelReadsTheIconWithItsMarks)
{
    TrayPanel panel(panelBus);
    StatusNotifierTray tray(bus);
    privateBus.settle();
    for (const QString& name : { "NewIcon", "NewToolTip", "NewStatus" })
        panel.watch("/StatusNotifierItem", "org.kde.StatusNotifierItem", name);
    EXPECT_EQ(itemProperty("Id").toString(), "com.nimb.corvane");
    EXPECT_EQ(itemProperty("Title").toString(), "Corvane");
    EXPECT_EQ(itemProperty("Status").toString(), "Active");
    EXPECT_EQ(itemProperty("Menu").value<QDBusObjectPath>().path(), "/MenuBar");
    const auto quiet = qdbus_cast<TrayPixmaps>(itemProperty("IconPixmap"));
    const auto quietTip = qdbus_cast<TrayToolTip>(itemProperty("ToolTip"));
    EXPECT_EQ(quietTip.title + u'/' + quietTip.text, "Corvane/");

    tray.setUnread(2);
    tray.setUnread(3);
    tray.setUnread(3);
    privateBus.settle();
    EXPECT_EQ(panel.heard.join(u' '), "NewIcon NewToolTip NewToolTip");
    EXPECT_EQ(qdbus_cast<TrayToolTip>(itemProperty("ToolTip")).text, "3 unread");
    const auto marked = qdbus_cast<TrayPixmaps>(itemProperty("IconPixmap"));
    ASSERT_EQ(marked.size(), 4);
    ASSERT_EQ(quiet.size(), 4);
    for (qsizetype i = 0; i < marked.size(); ++i) {
        const auto pixel = [](const TrayPixmap& pixmap, double x, double y) {
            const int at = 4 * (int(y * pixmap.height) * pixmap.width + int(x * pixmap.width));
            return pixmap.argb.mid(at, 4).toHex();
        };
        EXPECT_EQ(marked[i].argb.size(), marked[i].width * marked[i].height * 4);
        EXPECT_EQ(pixel(marked[i], 0.8, 0.2), "ffe5483a") << "the dot";
        EXPECT_EQ(pixel(quiet[i], 0.8, 0.2), "ff2f5fe0") << "the tile";
        EXPECT_EQ(pixel(marked[i], 0.35, 0.6), "ffffffff") << "the head";
    }

    panel.heard.clear();
    tray.setWaiting(2);
    privateBus.settle();
    EXPECT_EQ(panel.heard.join(u' '), "NewIcon NewStatus NewToolTip");
    EXPECT_EQ(itemProperty("Status").toString(), "NeedsAttention");
    EXPECT_EQ(qdbus_cast<TrayToolTip>(itemProperty("ToolTip")).text, "2 waiting for your approval · 3 unread");
    EXPECT_NE(qdbus_cast<TrayPixmaps>(itemProperty("AttentionIconPixmap")).last().argb, marked.last().argb);
    tray.setLabel("Standup 5m");
    EXPECT_EQ(itemProperty("XAyatanaLabel").toString(), "Standup 5m");
    EXPECT_TRUE(qdbus_cast<TrayToolTip>(itemProperty("ToolTip")).text.endsWith("3 unread · Standup 5m"));
    tray.setWaiting(0);
    tray.setUnread(0);
    EXPECT_EQ(itemProperty("Status").toString(), "Active");
    EXPECT_EQ(qdbus_cast<TrayPixmaps>(itemProperty("IconPixmap")).last().argb, quiet.last().argb);
}

TEST_F(TrayTest, pressingTheIconOrAnItemReachesTheProgram)
{
    TrayPanel panel(panelBus);
    StatusNotifierTray tray(bus);
    QStringList events;
    QObject::connect(&tray, &Tray::activated,
        [&](const QPoint& at) { events.append(u"activated:%1,%2"_s.arg(at.x()).arg(at.y())); });
    QObject::connect(&tray, &Tray::itemChosen, [&](const QString& id) { events.append(id); });
    tray.setMenu({ { "open", "Open in_box" }, { "", "" }, { "quit", "Quit" } });
    privateBus.settle();
    panel.watch("/MenuBar", "com.canonical.dbusmenu", "LayoutUpdated");

    const QList<MenuProperties> items = menuItems();
    ASSERT_EQ(items.size(), 3);
    EXPECT_EQ(items[0].properties.value("label").toString(), "Open in__box");
    EXPECT_EQ(items[1].properties.value("type").toString(), "separator");
    EXPECT_EQ(firstValue(askMenu("GetProperty", { items[2].id, "label" })).toString(), "Quit");

    askItem("ProvideXdgActivationToken", { "panel-token" });
    askItem("Activate", { 10, 20 });
    click(items[2].id);
    const QList<MenuEvent> group { { items[0].id, "clicked", QDBusVariant(0), 0 },
        { 99, "clicked", QDBusVariant(0), 0 } };
    const QDBusMessage unknown = askMenu("EventGroup", { QVariant::fromValue(group) });
    EXPECT_EQ(qdbus_cast<QList<int>>(unknown.arguments().value(0)), QList<int> { 99 });
    privateBus.settle();
    EXPECT_EQ(events.join(u' '), "activated:10,20 quit open");
    EXPECT_EQ(qEnvironmentVariable("XDG_ACTIVATION_TOKEN"), "panel-token");
    qunsetenv("XDG_ACTIVATION_TOKEN");

    tray.setMenu({ { "quit", "Quit" } });
    tray.setMenu({ { "quit", "Quit" } });
    privateBus.settle();
    EXPECT_EQ(panel.heard.size(), 1) << "the same menu again is no news";
    EXPECT_EQ(click(items[0].id).type(), QDBusMessage::ErrorMessage) << "a press on a menu that was replaced";
    EXPECT_EQ(click(-1).type(), QDBusMessage::ErrorMessage);
    privateBus.settle();
    EXPECT_EQ(events.size(), 3);
    EXPECT_EQ(menuItems().size(), 1);
}
