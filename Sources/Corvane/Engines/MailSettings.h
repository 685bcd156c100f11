#pragma once

#include <QJsonObject>
#include <QStringList>
#include <optional>

namespace corvane {

/// A mail server. Its connection is encrypted from the first byte, or by STARTTLS before anything else is said.
struct MailServer {
    QString host;
    int port = 0;
    bool startTls = false;

    bool operator==(const MailServer&) const = default;
};

/// What an e-mail account signs in with, and where: its secret in the keychain.
struct MailSettings {
    QString password;
    QStringList tokenCommand; ///< a program and its arguments that print a token; in place of the password
    QString user; ///< the name to sign in with; empty where it is the address
    std::optional<MailServer> imap; ///< none: the engine looks for it
    std::optional<MailServer> smtp;
    QJsonObject others {}; ///< what else the secret says, such as further addresses

    bool operator==(const MailSettings&) const = default;
};

/// The settings in a secret. A text that is no JSON object with a password or a token command is a password itself.
MailSettings mailSettings(const QString& secret);

/// The secret that holds the settings.
QString mailSecret(const MailSettings& settings);

/// The server in a JSON object with "host", "port" and "security"; nothing where one of them is missing.
std::optional<MailServer> mailServer(const QJsonObject& object);

}
