#include "Foundation/NotificationCentre.h"
#include "Support/Print.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(NotificationCentre, postsByNameInOrderWithWhatWasGiven)
{
    NotificationCentre centre;
    QStringList seen;
    const auto first = centre.observe("a", [&](const Notification& notification) {
        seen.append(notification.object.value_or("none") + notification.userInfo.value("k").toString());
    });
    const auto second = centre.observe("a", [&](const Notification&) { seen.append("second"); });
    const auto other = centre.observe("b", [&](const Notification&) { seen.append("other"); });
    centre.post("a", "x", { { "k", 1 } });
    centre.post("unheard");
    centre.post("b");
    EXPECT_EQ(seen, QStringList({ "x1", "second", "other" }));
}

TEST(NotificationCentre, observersMayComeAndGoWhileOneIsPosted)
{
    const QString name = "a";
    auto centre = std::make_unique<NotificationCentre>();
    QStringList seen;
    NotificationCentre::Observation removed;
    NotificationCentre::Observation self;
    NotificationCentre::Observation added;
    self = centre->observe(name, [&](const Notification&) {
        const QString kept = "self";
        self = {};
        removed = {};
        added = centre->observe(name, [&](const Notification&) { seen.append("added"); });
        seen.append(kept);
    });
    removed = centre->observe(name, [&](const Notification&) { seen.append("removed"); });
    centre->post(name);
    EXPECT_EQ(seen, QStringList({ "self" }));
    centre->post(name);
    EXPECT_EQ(seen, QStringList({ "self", "added" }));

    centre.reset();
    added = {};
}
