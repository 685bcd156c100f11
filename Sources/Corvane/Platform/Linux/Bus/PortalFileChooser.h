#pragma once

#include "Foundation/Result.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QObject>
#include <QUrl>
#include <functional>

namespace corvane {

/// One request to the file chooser portal. It deletes itself after the answer.
class PortalFileChooser final : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(const Result<QList<QUrl>>& files)>;

    enum class For { Files, Folder };

    PortalFileChooser(const QDBusConnection& bus, For what, const QString& title, Done done, QObject* context);

private Q_SLOTS:
    void onResponse(const QDBusMessage& response);

private:
    void end(const Result<QList<QUrl>>& files);

    QDBusConnection m_bus;
    const For m_what;
    Done m_done; ///< none after the answer
};

}
