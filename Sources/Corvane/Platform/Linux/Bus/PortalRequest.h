#pragma once

#include "Foundation/Result.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>
#include <functional>

namespace corvane {

/// One request to a portal of the desktop, which may ask the user. It deletes itself after the answer.
class PortalRequest final : public QObject {
    Q_OBJECT
public:
    struct Call {
        QString interface;
        QString method;
        QVariantList arguments; ///< before the options
        QVariantMap options;
    };
    /// The results, which are empty if the user refused; an error, for the log, if no such portal answers.
    using Done = std::function<void(const Result<QVariantMap>& results)>;

    PortalRequest(const QDBusConnection& bus, const Call& call, Done done, QObject* context);

private Q_SLOTS:
    void onResponse(const QDBusMessage& response);

private:
    void end(const Result<QVariantMap>& results);

    QDBusConnection m_bus;
    Done m_done; ///< none after the answer
};

}
