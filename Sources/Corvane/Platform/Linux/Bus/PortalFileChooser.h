#pragma once

#include "Foundation/Result.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QObject>
#include <QUrl>
#include <functional>

namespace corvane {

/// One request to the file chooser of the desktop's portal. It goes when it was answered.
class PortalFileChooser final : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(const Result<QList<QUrl>>& files)>;

    PortalFileChooser(const QDBusConnection& bus, const QString& title, Done done, QObject* context);

private Q_SLOTS:
    void onResponse(const QDBusMessage& response);

private:
    void end(const Result<QList<QUrl>>& files);

    QDBusConnection m_bus;
    Done m_done; ///< none once it was answered
};

}
