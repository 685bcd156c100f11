#pragma once

#include "Platform/NotificationService.h"

namespace corvane {

/// Records the banners that were shown. The test responds to them in place of the user.
class FakeNotificationService final : public NotificationService {
public:
    bool isAvailable() const override { return available; }
    void setResponseHandler(ResponseHandler handler) override { m_handler = std::move(handler); }
    void show(const Banner& banner) override { shown.append(banner); }

    void withdraw(const QVariantMap& userInfo) override
    {
        for (const Banner& banner : shown) {
            if (banner.userInfo == userInfo)
                withdrawn.append(banner.identifier);
        }
    }

    bool hasHandler() const { return m_handler != nullptr; }

    /// Presses an action of a shown banner; an empty action is a click on the banner itself.
    void press(const Banner& banner, const QString& action = {}) const { m_handler(banner.userInfo, action); }

    bool available = true;
    QList<Banner> shown;
    QStringList withdrawn; ///< identifiers of the shown banners that were withdrawn

private:
    ResponseHandler m_handler;
};

}
