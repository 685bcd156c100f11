#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>
#include <functional>

namespace corvane {

/// Types through the RemoteDesktop portal. The desktop asks the user once for each run of the program.
class PortalKeyboard final : public QObject {
    Q_OBJECT
public:
    enum class State {
        Absent, ///< the desktop has no such portal, or it refuses
        Idle, ///< nobody was asked yet
        Asking,
        Granted,
    };

    explicit PortalKeyboard(const QDBusConnection& bus);
    ~PortalKeyboard() override;

    State state() const { return m_state; }
    void ask(); ///< the user, unless that was done

    /// `done` is called later, with whether the portal took the keys; only while it is granted.
    void type(const QString& text, std::function<void(bool)> done);

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void onResponse(const QDBusMessage& response);
    void onClosed();

private:
    using Answer = void (PortalKeyboard::*)(const QVariantMap& results);

    void request(const QString& method, const QVariantList& arguments, QVariantMap options, Answer then);
    void chooseDevices(const QVariantMap& results);
    void start(const QVariantMap& results);
    void started(const QVariantMap& results);
    void enter(State state);
    void closeSession();

    QDBusConnection m_bus;
    State m_state = State::Absent;
    QString m_session; ///< the path of the open one, or empty
    QString m_awaited; ///< the path of the request that is under way
    Answer m_then = nullptr;
};

}
