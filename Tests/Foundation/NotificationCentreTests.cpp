#include "Foundation/NotificationCentre.h"
#include "Support/Print.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(NotificationCentre, postsByNameInOrderWithWhatWasGiven)
{
    NotificationCentre centre;
    QStringList seen;
    const auto first = centre.observe(QStringLiteral("a"), [&](const Notification& notification) {
        seen.append(notification.object.value_or(QStringLiteral("none"))
            + notification.userInfo.value(QStringLiteral("k")).toString());
    });
    const auto second
        = centre.observe(QStringLiteral("a"), [&](const Notification&) { seen.append(QStringLiteral("second")); });
    const auto other
        = centre.observe(QStringLiteral("b"), [&](const Notification&) { seen.append(QStringLiteral("other")); });
    centre.post(QStringLiteral("a"), QStringLiteral("x"), { { QStringLiteral("k"), 1 } });
    centre.post(QStringLiteral("unheard"));
    centre.post(QStringLiteral("b"));
    EXPECT_EQ(seen, QStringList({ QStringLiteral("x1"), QStringLiteral("second"), QStringLiteral("other") }));
}

TEST(NotificationCentre, observersMayComeAndGoWhileOneIsPosted)
{
    const QString name = QStringLiteral("a");
    auto centre = std::make_unique<NotificationCentre>();
    QStringList seen;
    NotificationCentre::Observation removed;
    NotificationCentre::Observation self;
    NotificationCentre::Observation added;
    self = centre->observe(name, [&](const Notification&) {
        const QString kept = QStringLiteral("self");
        self = {};
        removed = {};
        added = centre->observe(name, [&](const Notification&) { seen.append(QStringLiteral("added")); });
        seen.append(kept);
    });
    removed = centre->observe(name, [&](const Notification&) { seen.append(QStringLiteral("removed")); });
    centre->post(name);
    EXPECT_EQ(seen, QStringList({ QStringLiteral("self") }));
    centre->post(name);
    EXPECT_EQ(seen, QStringList({ QStringLiteral("self"), QStringLiteral("added") }));

    centre.reset();
    added = {};
}
