#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <memory>
#include <optional>

namespace corvane {

class Desktop;
class Keychain;
class Scheduler;
class UserDefaults;
class WebClient;
struct AppPaths;

/// The machine's link to the user's web account. Signed in means: there is a `token`.
class SessionStore : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool signedIn READ signedIn NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString lastError READ lastErrorText NOTIFY changed)
    Q_PROPERTY(QString displayLine READ displayLine NOTIFY changed)
    Q_PROPERTY(QString initial READ initial NOTIFY changed)
public:
    /// All references outlive the store. A stored token is used at once, or when the keyring answers.
    SessionStore(const AppPaths& paths, Keychain& keychain, UserDefaults& defaults, Desktop& desktop,
        Scheduler& scheduler, QObject* parent = nullptr);
    ~SessionStore() override;

    const std::optional<QString>& token() const { return m_token; }
    const std::optional<QString>& deviceId() const { return m_deviceId; }
    const std::optional<QString>& email() const { return m_claims.email; }
    const std::optional<QString>& userName() const { return m_claims.userName; }
    const std::optional<QString>& workspaceId() const { return m_claims.workspaceId; }
    const std::optional<QString>& organizationId() const { return m_claims.organizationId; }
    const std::optional<QString>& lastError() const { return m_lastError; }
    bool signedIn() const { return m_token.has_value(); }
    bool isAwaited() const; ///< whether the keyring has yet to answer
    bool busy() const { return m_busy; }
    bool webRejected() const { return m_webRejected; }
    void setWebRejected(bool rejected);
    QString lastErrorText() const { return m_lastError.value_or(QString()); }
    QString displayLine() const;
    QString initial() const; ///< first character of the name, else of the e-mail, else "?"

    void signIn(const QString& email, const QString& password);
    void startSignIn(); ///< opens the browser

    /// "nimb-companion://auth?code=..."; anything else is ignored. A link within ten minutes after `startSignIn`, while
    /// no sign-in is running, signs in at once. Any other must be accepted by the user.
    void handleCallback(const QUrl& url);
    bool asksAboutLink() const { return !m_offeredCode.isEmpty(); }
    void acceptLink(); ///< does nothing while a sign-in is running
    void ignoreLink();
    void forgetError();

    void setAuth(const QString& token, const QString& deviceId);
    void signOut();

Q_SIGNALS:
    void changed();
    void signedOut();

private:
    struct Flow; ///< the sign-in flows
    struct Claims {
        std::optional<QString> email;
        std::optional<QString> userName;
        std::optional<QString> workspaceId;
        std::optional<QString> organizationId;
    };

    void takeUpToken();
    QString knownAs() const; ///< the name, else the e-mail, else nothing
    quint64 beginAttempt();
    void cancelAttempt();
    void endAttempt(const std::optional<QString>& error);
    void decodeClaims(const QString& token);
    void writeTokenFile(const QString& token);
    QString tokenFilePath() const;
    QString deviceName() const;

    const AppPaths& m_paths;
    Keychain& m_keychain;
    UserDefaults& m_defaults;
    Desktop& m_desktop;
    Scheduler& m_scheduler;
    std::unique_ptr<WebClient> m_client;
    std::optional<QString> m_token;
    std::optional<QString> m_deviceId;
    Claims m_claims;
    std::optional<QString> m_lastError;
    std::optional<qint64> m_browserOpenedMs; ///< a sign-in is pending in the browser
    QString m_offeredCode; ///< from a link that was not requested here
    quint64 m_attempt = 0; ///< the newest sign-in; results of older ones are dropped
    bool m_busy = false;
    bool m_webRejected = false;
};

}
