#pragma once

#include "Foundation/Literals.h"
#include "Platform/Linux/Bus/LumoObject.h"

#include <QDBusConnection>
#include <QFile>
#include <QLocalServer>
#include <QVariantMap>

namespace corvane {

/// The bus name of the program for this data folder: the plain name for the user's default folder, a unique one for any
/// other.
QString instanceName(const QString& applicationSupport);

inline const QString instanceObjectPath = u"/com/nimb/corvane"_s;

/// The interface that desktops call on a running program (org.freedesktop.Application).
class ApplicationObject final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public Q_SLOTS:
    Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
    Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
    /// An action of the desktop entry: the same as the argument of that name, such as "capture".
    Q_SCRIPTABLE void ActivateAction(
        const QString& action, const QVariantList& parameters, const QVariantMap& platformData);

Q_SIGNALS:
    void called(const QStringList& arguments, const QString& activationToken);
};

/// A lock on the data folder decides which process is the instance; the kernel releases it when its holder dies in any
/// way. The instance is reachable over the session bus and, for starts without a bus, through a socket in the data
/// folder that only its user can open.
class BusSingleInstance final : public SingleInstance {
    Q_OBJECT
public:
    BusSingleInstance(
        const QString& applicationSupport, const QDBusConnection& bus, StartFor purpose = StartFor::Window);
    ~BusSingleInstance() override;

    bool claim(const QStringList& arguments) override;
    void setAnswerer(Answerer answerer) override;

private:
    enum class Lock { Taken, HeldByAnother, Impossible };
    enum class Delivery { Taken, Unanswered, Unreachable };

    Lock takeLock();
    bool isToBeReplaced(); ///< the program that holds the lock
    Delivery handOver(const QStringList& arguments);
    Delivery handOverOnBus(const QStringList& arguments);
    Delivery handOverThroughSocket(const QStringList& arguments);
    void open();
    void onConnection();
    void receive(const QStringList& arguments, const QString& activationToken);

    QString m_folder;
    QString m_socketPath;
    QString m_name;
    QDBusConnection m_bus;
    const StartFor m_purpose;
    QFile m_lock; ///< says whether its holder has no window
    ApplicationObject m_object;
    LumoObject m_lumo; ///< on the same path
    QLocalServer m_server;
};

}
