#pragma once

#include <QJsonObject>
#include <QStringList>
#include <optional>

namespace corvane {

/// A mail server. Its connection uses TLS from the start, or STARTTLS before anything else is sent.
struct MailServer {
    QString host;
    int port = 0;
    bool startTls = false;

    bool operator==(const MailServer&) const = default;
};

/// The sign-in data and servers of an e-mail account: its secret in the keychain.
struct MailSettings {
    QString password;
    QStringList tokenCommand; ///< a program with arguments that prints a token; replaces the password
    QString user; ///< empty: the address
    std::optional<MailServer> imap; ///< none: the engine finds it
    std::optional<MailServer> smtp;
    QJsonObject others {}; ///< other members of the secret, such as additional addresses

    bool operator==(const MailSettings&) const = default;
};

/// The settings in a secret. Text that is not a JSON object with a password or a token command is itself the password.
MailSettings mailSettings(const QString& secret);

/// The secret that holds the settings.
QString mailSecret(const MailSettings& settings);

/// A server from a JSON object with "host", "port" and "security"; nothing if one is missing.
std::optional<MailServer> mailServer(const QJsonObject& object);

}
