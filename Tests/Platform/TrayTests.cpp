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
    /// The colour at this part of the width and the height.
    static QByteArray pixel(const TrayPixmap& pixmap, double x, double y)
    {
        const int at = 4 * (int(y * pixmap.height) * pixmap.width + int(x * pixmap.width));
        return pixmap.argb.mid(at, 4).toHex();
    }

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
    for (const QString& name : { "NewIcon", "NewAttentionIcon", "NewToolTip", "NewStatus", "XAyatanaNewLabel" })
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
    EXPECT_EQ(panel.heard.join(u' '), "NewIcon NewAttentionIcon NewToolTip NewToolTip");
    EXPECT_EQ(qdbus_cast<TrayToolTip>(itemProperty("ToolTip")).text, "3 unread");
    const auto marked = qdbus_cast<TrayPixmaps>(itemProperty("IconPixmap"));
    ASSERT_EQ(marked.size(), 4);
    ASSERT_EQ(quiet.size(), 4);
    QList<int> sizes;
    for (qsizetype i = 0; i < marked.size(); ++i) {
        sizes.append(marked[i].width);
        EXPECT_EQ(marked[i].height, marked[i].width);
        EXPECT_EQ(marked[i].argb.size(), marked[i].width * marked[i].height * 4);
        EXPECT_EQ(pixel(marked[i], 0.8, 0.2), "ffe5483a") << "the dot";
        EXPECT_EQ(pixel(quiet[i], 0.8, 0.2), "ff2f5fe0") << "the tile";
        EXPECT_EQ(pixel(marked[i], 0.35, 0.6), "ffffffff") << "the head";
        EXPECT_EQ(pixel(quiet[i], 0, 0), "00000000") << "around the tile";
    }
    EXPECT_EQ(sizes, QList<int>({ 16, 22, 32, 48 }));
    EXPECT_EQ(pixel(quiet.last(), 0.52, 0.42), "ff2f5fe0") << "the eye";
    EXPECT_EQ(pixel(marked.last(), 0.59, 0.2), "00000000") << "a gap around the dot";

    panel.heard.clear();
    tray.setWaiting(2);
    privateBus.settle();
    EXPECT_EQ(panel.heard.join(u' '), "NewIcon NewAttentionIcon NewStatus NewToolTip");
    EXPECT_EQ(itemProperty("Status").toString(), "NeedsAttention");
    EXPECT_EQ(qdbus_cast<TrayToolTip>(itemProperty("ToolTip")).text, "2 waiting for your approval · 3 unread");
    const auto waiting = qdbus_cast<TrayPixmaps>(itemProperty("AttentionIconPixmap"));
    EXPECT_EQ(pixel(waiting.last(), 0.8, 0.2), "fff2a93b");
    panel.heard.clear();
    tray.setUnread(4);
    tray.setUnread(3);
    tray.setWaiting(3);
    tray.setWaiting(2);
    privateBus.settle();
    EXPECT_EQ(panel.heard.join(u' '), "NewToolTip NewToolTip NewToolTip NewToolTip") << "the mark is the same";
    panel.heard.clear();
    for (const QString& label : { "Standup 5m", "Standup 5m" })
        tray.setLabel(label);
    privateBus.settle();
    EXPECT_EQ(panel.heard.join(u' '), "XAyatanaNewLabel NewToolTip");
    EXPECT_EQ(itemProperty("XAyatanaLabel").toString(), "Standup 5m");
    EXPECT_TRUE(qdbus_cast<TrayToolTip>(itemProperty("ToolTip")).text.endsWith("3 unread · Standup 5m"));

    panel.heard.clear();
    for (const bool recording : { true, true })
        tray.setRecording(recording);
    privateBus.settle();
    EXPECT_EQ(panel.heard.join(u' '), "NewIcon NewAttentionIcon NewToolTip");
    EXPECT_EQ(qdbus_cast<TrayToolTip>(itemProperty("ToolTip")).text,
        "Recording a call · 2 waiting for your approval · 3 unread · Standup 5m");
    const auto recording = qdbus_cast<TrayPixmaps>(itemProperty("IconPixmap"));
    EXPECT_EQ(pixel(recording.last(), 0.8, 0.2), "ffe5483a");
    EXPECT_EQ(pixel(recording.last(), 0.8, 0.1), "ffffffff") << "a ring within the dot";
    EXPECT_EQ(pixel(recording.last(), 0.8, 0.05), "ffe5483a");

    tray.setRecording(false);
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
    askItem("SecondaryActivate", { 3, 4 });
    askItem("Scroll", { 1, "vertical" });
    askItem("ContextMenu", { 1, 2 });
    click(items[2].id);
    const QList<MenuEvent> group { { items[0].id, "clicked", QDBusVariant(0), 0 },
        { 99, "clicked", QDBusVariant(0), 0 } };
    const QDBusMessage unknown = askMenu("EventGroup", { QVariant::fromValue(group) });
    EXPECT_EQ(qdbus_cast<QList<int>>(unknown.arguments().value(0)), QList<int> { 99 });
    privateBus.settle();
    EXPECT_EQ(events.join(u' '), "activated:10,20 activated:3,4 quit open");
    EXPECT_EQ(qEnvironmentVariable("XDG_ACTIVATION_TOKEN"), "panel-token");
    qunsetenv("XDG_ACTIVATION_TOKEN");

    tray.setMenu({ { "quit", "Quit" } });
    tray.setMenu({ { "quit", "Quit" } });
    privateBus.settle();
    EXPECT_EQ(panel.heard.size(), 1) << "the same menu again is no news";
    EXPECT_EQ(click(items[0].id).type(), QDBusMessage::ErrorMessage) << "a press on a menu that was replaced";
    EXPECT_EQ(click(-1).type(), QDBusMessage::ErrorMessage);
    privateBus.settle();
    EXPECT_EQ(events.size(), 4);
    EXPECT_EQ(menuItems().size(), 1);
}

TEST_F(TrayTest, aPanelMayAskForPartsOfTheMenu)
{
    TrayPanel panel(panelBus);
    StatusNotifierTray tray(bus);
    QStringList chosen;
    QObject::connect(&tray, &Tray::itemChosen, [&](const QString& id) { chosen.append(id); });
    tray.setMenu({ { "open", "Open" }, { "", "" } });
    privateBus.settle();
    const QList<MenuProperties> items = menuItems();
    ASSERT_EQ(items.size(), 2);
    const auto layout = [&](int id, int depth, const QStringList& names = {}) {
        const QDBusMessage reply = askMenu("GetLayout", { id, depth, names });
        const auto found = qdbus_cast<MenuLayout>(reply.arguments().value(1));
        return reply.type() == QDBusMessage::ErrorMessage
            ? reply.errorMessage()
            : u"%1 %2 %3 with %4"_s.arg(QString::number(found.id), found.properties.keys().join('+'),
                  found.properties.values().value(0).toString(), QString::number(found.children.size()));
    };
    EXPECT_EQ(layout(0, -1), "0 children-display submenu with 2");
    EXPECT_EQ(layout(0, 1, { "label" }), "0   with 2");
    EXPECT_EQ(layout(0, 0), "0 children-display submenu with 0");
    EXPECT_EQ(layout(items[0].id, -1), u"%1 label Open with 0"_s.arg(items[0].id));
    EXPECT_EQ(layout(items[1].id, -1, { "type", "label" }), u"%1 type separator with 0"_s.arg(items[1].id));
    for (const int id : { items[0].id - 1, items[1].id + 1 })
        EXPECT_EQ(layout(id, -1), id == 0 ? "0 children-display submenu with 2" : "no such item");

    const auto group = [&](const QList<int>& ids, const QStringList& names) {
        QStringList found;
        const QDBusMessage reply = askMenu("GetGroupProperties", { QVariant::fromValue(ids), names });
        for (const MenuProperties& each : qdbus_cast<QList<MenuProperties>>(reply.arguments().value(0)))
            found.append(u"%1 %2"_s.arg(each.id).arg(each.properties.keys().join('+')));
        return found.join(", ");
    };
    EXPECT_EQ(group({}, {}), u"%1 label, %2 type"_s.arg(items[0].id).arg(items[1].id));
    EXPECT_EQ(group({ items[1].id, 99 }, { "label", "type" }), u"%1 type"_s.arg(items[1].id));

    EXPECT_EQ(askMenu("GetProperty", { items[0].id, "type" }).errorMessage(), "no such property");
    EXPECT_EQ(askMenu("GetProperty", { 99, "label" }).errorMessage(), "no such property");
    EXPECT_EQ(firstValue(askMenu("AboutToShow", { 0 })), QVariant(false)) << "nothing has to be read anew";
    const QDBusMessage about
        = askMenu("AboutToShowGroup", { QVariant::fromValue(QList<int> { 0, 99, items[0].id, -1 }) });
    EXPECT_EQ(qdbus_cast<QList<int>>(about.arguments().value(0)), QList<int>());
    EXPECT_EQ(qdbus_cast<QList<int>>(about.arguments().value(1)), QList<int>({ 99, -1 }));

    EXPECT_EQ(click(0).type(), QDBusMessage::ReplyMessage);
    askMenu("Event", { items[0].id, "hovered", QVariant::fromValue(QDBusVariant(0)), 0U });
    privateBus.settle();
    EXPECT_EQ(chosen, QStringList()) << "only a press on an item chooses it";
    const QVariant direction = firstValue(ask({ service, "/MenuBar", "org.freedesktop.DBus.Properties" }, "Get",
        { "com.canonical.dbusmenu", "TextDirection" }));
    EXPECT_EQ(direction.toString(), "ltr");
}
