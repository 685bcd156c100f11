#include "Foundation/Literals.h"
#include "Platform/Linux/Bus/BusNotificationService.h"

#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/NotificationDaemon.h"
#include "Support/Print.h"
#include "Support/PrivateBus.h"

#include <QDBusMessage>
#include <QGuiApplication>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

class NotificationServiceTest : public testing::Test {
protected:
    NotificationServiceTest()
    {
        QGuiApplication::setDesktopFileName("com.nimb.corvane");
        service.setResponseHandler([this](const QVariantMap& userInfo, const QString& action) {
            responses.append(userInfo.value("key").toString() + u'/' + action);
        });
    }
    ~NotificationServiceTest() override { QGuiApplication::setDesktopFileName(QString()); }

    static Banner banner(const QString& identifier, const QString& body = "hello")
    {
        Banner result;
        result.identifier = identifier;
        result.title = "Ana";
        result.body = body;
        result.userInfo = { { "key", identifier } };
        return result;
    }

    void show(const Banner& shown, NotificationDaemon& daemon)
    {
        const qsizetype before = daemon.received.size();
        service.show(shown);
        ASSERT_TRUE(await([&] { return daemon.received.size() > before; }));
        privateBus.settle();
    }

    PrivateBus privateBus;
    QDBusConnection bus = privateBus.connect();
    QDBusConnection daemonBus = privateBus.connect();
    BusNotificationService service { bus };
    QStringList responses;
};

}

TEST_F(NotificationServiceTest, aBannerCarriesItsTextsActionsAndHints)
{
    NotificationDaemon daemon(daemonBus);
    Banner full = banner("approval-draft-1", "1 < 2 & \"so\" on\nsecond line");
    full.subtitle = "Email";
    full.category = "NIMB_APPROVAL";
    full.thread = "nimb.approvals";
    full.actions = { { "NIMB_APPROVE", "Approve" }, { "NIMB_REJECT", "Reject" } };
    show(full, daemon);

    const NotificationDaemon::Received received = daemon.received.constFirst();
    EXPECT_EQ(received.application + ' ' + received.icon, "Corvane com.nimb.corvane");
    EXPECT_EQ(received.replaces, 0U);
    EXPECT_EQ(received.timeout, -1);
    EXPECT_EQ(received.summary + '|' + received.body, "Ana|Email\n1 < 2 & \"so\" on\nsecond line");
    EXPECT_EQ(received.actions.join(u'|'), "default|Open|NIMB_APPROVE|Approve|NIMB_REJECT|Reject");
    EXPECT_EQ(received.hints.value("urgency"), QVariant::fromValue(uchar(1)));
    EXPECT_EQ(received.hints.value("category"), "x-corvane.NIMB_APPROVAL");
    EXPECT_EQ(received.hints.value("desktop-entry"), "com.nimb.corvane");
    EXPECT_EQ(received.hints.value("x-corvane-thread"), "nimb.approvals");

    Banner subtitle = banner("subtitle", "");
    subtitle.subtitle = "Email";
    show(subtitle, daemon);
    EXPECT_EQ(daemon.received.constLast().body, "Email");
    show(banner("plain"), daemon);
    EXPECT_EQ(daemon.received.constLast().hints.value("category").toString(), "im.received");
    EXPECT_EQ(daemon.received.constLast().body, "hello");
}

TEST_F(NotificationServiceTest, aDaemonGetsOnlyWhatItOffersAndWhatABusTakes)
{
    NotificationDaemon daemon(daemonBus, { "body", "body-markup" });
    Banner markup = banner("a", "<b>no</b> & so");
    markup.actions = { { "NIMB_APPROVE", "Approve" } };
    show(markup, daemon);
    EXPECT_TRUE(daemon.received.constFirst().actions.isEmpty());
    EXPECT_EQ(daemon.received.constFirst().body, "&lt;b&gt;no&lt;/b&gt; &amp; so");
    show(banner("a", u"a"_s + QChar(0xD800) + "b"), daemon);
    EXPECT_EQ(daemon.received.constLast().body.size(), 3) << "what no bus takes is replaced";
    show(banner("b", u"a"_s + QChar(0) + "b"), daemon);
    EXPECT_EQ(daemon.received.constLast().body, "ab");
}

TEST_F(NotificationServiceTest, oneIdentifierIsOneBannerEvenWhileTheFirstIsOnItsWay)
{
    NotificationDaemon daemon(daemonBus);
    for (const QString& body : { "1", "2", "3" })
        service.show(banner("approval", body));
    service.show(banner("other"));
    ASSERT_TRUE(await([&] { return daemon.received.size() == 3; }));
    privateBus.settle();
    QStringList seen;
    for (const auto& received : daemon.received)
        seen.append(u"%1:%2"_s.arg(received.id).arg(received.body));
    EXPECT_EQ(seen.join(u' '), "1:1 2:hello 1:3") << "what was overtaken on the way is not shown";

    Q_EMIT daemon.NotificationClosed(1, 2);
    privateBus.settle();
    show(banner("approval", "4"), daemon);
    EXPECT_EQ(daemon.received.constLast().replaces, 0U) << "a closed banner cannot be replaced";
}

TEST_F(NotificationServiceTest, aBannerIsTakenBackFromTheScreenAndFromItsWay)
{
    NotificationDaemon daemon(daemonBus);
    show(banner("one"), daemon);
    show(banner("two"), daemon);
    service.withdraw({ { "key", "one" } });
    privateBus.settle();
    EXPECT_EQ(daemon.closed, QList<uint>({ 1 }));
    service.show(banner("three"));
    service.show(banner("three", "again"));
    service.withdraw({ { "key", "three" } });
    EXPECT_TRUE(await([&] { return daemon.closed.size() == 2; }));
    privateBus.settle();
    EXPECT_EQ(daemon.received.size(), 3) << "the second is not shown any more";
    EXPECT_EQ(daemon.closed.last(), daemon.received.constLast().id);
}

TEST_F(NotificationServiceTest, whatIsTakenBackBeforeTheDaemonAnswersIsNotShownAndWhatComesAgainIs)
{
    NotificationDaemon daemon(daemonBus);
    service.show(banner("one"));
    service.show(banner("two"));
    service.withdraw({ { "key", "one" } });
    ASSERT_TRUE(await([&] { return !daemon.received.isEmpty(); }));
    privateBus.settle();
    EXPECT_EQ(daemon.received.size(), 1);
    EXPECT_EQ(daemon.received.constFirst().id, 1U);

    service.show(banner("three"));
    service.withdraw({ { "key", "three" } });
    service.show(banner("three", "again"));
    ASSERT_TRUE(await([&] { return daemon.received.size() == 3; }));
    privateBus.settle();
    EXPECT_EQ(daemon.received.constLast().body, "again");
    EXPECT_EQ(daemon.closed, QList<uint>());
    service.withdraw({ { "key", "three" } });
    service.withdraw({ { "key", "three" } });
    privateBus.settle();
    EXPECT_EQ(daemon.closed, QList<uint>({ 2 }));
    show(banner("three"), daemon);
    EXPECT_EQ(daemon.received.constLast().replaces, 0U) << "what was taken back cannot be replaced";

    daemon.refuses = true;
    show(banner("four"), daemon);
    daemon.refuses = false;
    show(banner("four"), daemon);
    EXPECT_EQ(daemon.received.constLast().replaces, 0U) << "it was never shown";
}

TEST_F(NotificationServiceTest, aPressComesBackWithTheBannersUserInfo)
{
    NotificationDaemon daemon(daemonBus);
    show(banner("one"), daemon);
    show(banner("two"), daemon);
    QDBusMessage forged = QDBusMessage::createSignal(
        "/org/freedesktop/Notifications", "org.freedesktop.Notifications", "ActionInvoked");
    forged.setArguments({ daemon.received.constFirst().id, "NIMB_APPROVE" });
    privateBus.connect().send(forged);
    privateBus.settle();
    EXPECT_EQ(responses.size(), 0) << "another program on the bus presses nothing";
    Q_EMIT daemon.ActivationToken(99, "of another program");
    Q_EMIT daemon.ActionInvoked(99, "default");
    privateBus.settle();
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));

    Q_EMIT daemon.ActivationToken(2, "token-2");
    Q_EMIT daemon.ActionInvoked(2, "default");
    Q_EMIT daemon.ActionInvoked(1, "NIMB_REJECT");
    Q_EMIT daemon.NotificationClosed(1, 2);
    Q_EMIT daemon.ActionInvoked(1, "default");
    privateBus.settle();
    EXPECT_EQ(responses.join(u' '), "two/ one/NIMB_REJECT");
    EXPECT_EQ(qEnvironmentVariable("XDG_ACTIVATION_TOKEN"), "token-2");
    qunsetenv("XDG_ACTIVATION_TOKEN");

    service.setResponseHandler({});
    Q_EMIT daemon.ActionInvoked(2, "default");
    privateBus.settle();
    EXPECT_EQ(responses.size(), 2);
}

TEST_F(NotificationServiceTest, aDaemonMayComeLateAndGo)
{
    service.show(banner("lost"));
    privateBus.settle();
    {
        NotificationDaemon first(daemonBus);
        show(banner("approval"), first);
        EXPECT_EQ(first.received.size(), 1) << "what nobody could show is dropped";
        EXPECT_EQ(first.received.constFirst().actions.size(), 2);
    }
    privateBus.settle();
    service.show(banner("lost too"));
    privateBus.settle();
    NotificationDaemon second(daemonBus, { "body" });
    show(banner("approval"), second);
    ASSERT_EQ(second.received.size(), 1);
    EXPECT_EQ(second.received.constFirst().replaces, 0U) << "the old daemon's id means nothing to this one";
    EXPECT_TRUE(second.received.constFirst().actions.isEmpty()) << "it is asked anew for what it offers";
}

TEST_F(NotificationServiceTest, itIsAvailableOnlyWithABusAndADesktopEntry)
{
    EXPECT_TRUE(service.isAvailable()) << "even while no daemon is there";
    QGuiApplication::setDesktopFileName(QString());
    EXPECT_FALSE(service.isAvailable());
    QGuiApplication::setDesktopFileName("com.nimb.corvane");

    service.show(banner("on its way"));
    privateBus.stop();
    ASSERT_TRUE(await([&] { return !service.isAvailable(); }));
    service.show(banner("after the bus went"));
}
