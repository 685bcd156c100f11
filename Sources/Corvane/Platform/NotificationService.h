#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>
#include <functional>

namespace corvane {

/// A desktop notification banner.
struct Banner {
    struct Action {
        QString id;
        QString label;
    };
    QString identifier; ///< a later banner with the same identifier replaces this one
    QString thread; ///< groups related banners
    QString category; ///< empty for a plain message
    QString title;
    QString subtitle;
    QString body; ///< plain text
    QList<Action> actions; ///< in addition to clicking the banner itself
    QVariantMap userInfo; ///< returned with the response
};

/// The desktop's notification service. Without one on the bus every call does nothing.
class NotificationService {
public:
    /// A response to a banner: its user info and the action's id, empty for a click on the banner itself.
    using ResponseHandler = std::function<void(const QVariantMap& userInfo, const QString& action)>;

    virtual ~NotificationService() = default;

    /// Whether this process can post at all: it has a bus and a desktop entry. Whether someone shows banners right now
    /// does not matter; otherwise they are dropped.
    virtual bool isAvailable() const = 0;
    virtual void setResponseHandler(ResponseHandler handler) = 0; ///< called on the main thread
    virtual void show(const Banner& banner) = 0;

    /// Withdraws every banner with that user info, whether it is visible, in the desktop's list or still being sent.
    virtual void withdraw(const QVariantMap& userInfo) = 0;
};

}
