#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <memory>
#include <optional>

class QNetworkAccessManager;

namespace corvane {

class Desktop;
class Keychain;
class UserDefaults;
struct AppPaths;

/// The machine's link to the user's web account. The presence of `token` is "signed in".
class SessionStore : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool signedIn READ signedIn NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(bool webRejected READ webRejected NOTIFY changed)
    Q_PROPERTY(QString lastError READ lastErrorText NOTIFY changed)
    Q_PROPERTY(QString displayLine READ displayLine NOTIFY changed)
    Q_PROPERTY(QString initial READ initial NOTIFY changed)
public:
    SessionStore(
        const AppPaths& paths, Keychain& keychain, UserDefaults& defaults, Desktop& desktop, QObject* parent = nullptr);
    ~SessionStore() override;

    const std::optional<QString>& token() const { return m_token; }
    const std::optional<QString>& deviceId() const { return m_deviceId; }
    const std::optional<QString>& email() const { return m_email; }
    const std::optional<QString>& userName() const { return m_userName; }
    const std::optional<QString>& workspaceId() const { return m_workspaceId; }
    const std::optional<QString>& organizationId() const { return m_organizationId; }
    const std::optional<QString>& lastError() const { return m_lastError; }
    bool signedIn() const { return m_token.has_value(); }
    bool busy() const { return m_busy; }
    bool webRejected() const { return m_webRejected; }
    void setWebRejected(bool rejected);
    QString lastErrorText() const { return m_lastError.value_or(QString()); }
    QString displayLine() const;
    QString initial() const; ///< first character of the name, else of the e-mail, else "?"

    void signIn(const QString& email, const QString& password);
    Q_INVOKABLE void startSignIn(); ///< opens the browser
    void handleCallback(const QUrl& url); ///< "nimb-companion://auth?code=..."; anything else is ignored
    void setAuth(const QString& token, const QString& deviceId);
    Q_INVOKABLE void signOut();

Q_SIGNALS:
    void changed();
    void signedOut();

private:
    void decodeClaims(const QString& token);
    void writeTokenFile(const QString& token);

    const AppPaths& m_paths;
    Keychain& m_keychain;
    UserDefaults& m_defaults;
    Desktop& m_desktop;
    std::unique_ptr<QNetworkAccessManager> m_network;
    std::optional<QString> m_token;
    std::optional<QString> m_deviceId;
    std::optional<QString> m_email;
    std::optional<QString> m_userName;
    std::optional<QString> m_workspaceId;
    std::optional<QString> m_organizationId;
    std::optional<QString> m_lastError;
    bool m_busy = false;
    bool m_webRejected = false;
};

}
