#pragma once

#include <QList>
#include <QString>
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
};

/// The desktop's notification service. With none on the bus every call is silent.
class NotificationService {
public:
    /// `action` is empty for a click on the banner itself.
    using ResponseHandler = std::function<void(const QString& identifier, const QString& action)>;

    virtual ~NotificationService() = default;

    virtual bool isAvailable() const = 0;
    virtual void setResponseHandler(ResponseHandler handler) = 0;
    virtual void show(const Banner& banner) = 0;
};

}
