#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>
#include <functional>

namespace corvane {

/// Types through the RemoteDesktop portal. The desktop asks the user once per run of the program.
class PortalKeyboard final : public QObject {
    Q_OBJECT
public:
    enum class State {
        Absent, ///< the desktop has no such portal, or it refuses
        Idle, ///< the user was not asked yet
        Asking,
        Granted,
    };

    explicit PortalKeyboard(const QDBusConnection& bus);
    ~PortalKeyboard() override;

    State state() const { return m_state; }
    void ask(); ///< asks the user, unless that was done

    /// `done` is called later with whether the portal accepted the keys; only while access is granted. Some desktops
    /// leave out characters that are not on the keyboard.
    void type(const QString& text, std::function<void(bool)> done);
    void pressPaste(std::function<void(bool)> done); ///< Shift+Insert

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void onResponse(const QDBusMessage& response);
    void onClosed();

private:
    using Answer = void (PortalKeyboard::*)(const QVariantMap& results);

    void send(QList<QDBusMessage> keys, std::function<void(bool)> done);
    void request(const QString& method, const QVariantList& arguments, QVariantMap options, Answer then);
    void chooseDevices(const QVariantMap& results);
    void start(const QVariantMap& results);
    void started(const QVariantMap& results);
    void enter(State state);
    void closeSession();

    QDBusConnection m_bus;
    State m_state = State::Absent;
    QString m_session; ///< the path of the open session, or empty
    QString m_awaited; ///< the path of the pending request
    Answer m_then = nullptr;
};

}
