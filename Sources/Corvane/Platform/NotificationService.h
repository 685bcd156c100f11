#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>
#include <functional>

namespace corvane {

/// A banner of the desktop.
struct Banner {
    struct Action {
        QString id;
        QString label;
    };
    QString identifier; ///< a later banner of the same identifier takes the place of this one
    QString thread; ///< what belongs together
    QString category; ///< empty for a plain message
    QString title;
    QString subtitle;
    QString body; ///< plain text
    QList<Action> actions; ///< besides the click on the banner itself
    QVariantMap userInfo; ///< comes back with the response
};

/// The desktop's notification service. With none on the bus every call is silent.
class NotificationService {
public:
    /// What a person did with a banner: its user info and the id of the action, empty for a click on the banner itself.
    using ResponseHandler = std::function<void(const QVariantMap& userInfo, const QString& action)>;

    virtual ~NotificationService() = default;

    /// Whether this process may post at all: it has a bus to post on and a desktop entry to post under. That
    /// nobody shows banners just now is no matter of this; such banners are dropped.
    virtual bool isAvailable() const = 0;
    virtual void setResponseHandler(ResponseHandler handler) = 0; ///< called on the main thread
    virtual void show(const Banner& banner) = 0;

    /// Takes back each banner of that user info, whether it is on the screen, in the desktop's list or on its way.
    virtual void withdraw(const QVariantMap& userInfo) = 0;
};

}
