#pragma once

#include "Platform/SingleInstance.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <optional>

namespace corvane {

struct AppPaths;

/// What other programs may ask the running one.
class LumoObject final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimb.corvane")
public:
    /// `object` is the one registered on the bus.
    LumoObject(const QDBusConnection& bus, QObject* object);

    SingleInstance::Answerer answerer;

public Q_SLOTS:
    QString AskLumo(const QString& question, const QDBusMessage& call);

private:
    QDBusConnection m_bus;
};

/// See `askRunningProgram` of the services.
std::optional<Result<QString>> askRunningProgram(
    const AppPaths& paths, const QDBusConnection& bus, const QString& question);

}
