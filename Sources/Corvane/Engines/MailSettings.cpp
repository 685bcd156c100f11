#include "Engines/MailSettings.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"

#include <QJsonArray>

namespace corvane {

namespace {

constexpr QLatin1StringView passwordKey("password");
constexpr QLatin1StringView tokenKey("tokenCommand");
constexpr QLatin1StringView userKey("user");
constexpr QLatin1StringView imapKey("imap");
constexpr QLatin1StringView smtpKey("smtp");

QJsonObject serverObject(const MailServer& server)
{
    return { { u"host"_s, server.host }, { u"port"_s, server.port },
        { u"security"_s, server.startTls ? u"starttls"_s : u"tls"_s } };
}

}

std::optional<MailServer> mailServer(const QJsonObject& object)
{
    const auto host = textValue(object, "host"_L1);
    const auto port = wholeNumber(object, "port"_L1);
    const auto security = textValue(object, "security"_L1);
    if (!host || host->isEmpty() || !port || *port < 1 || *port > 65'535
        || (security != u"tls" && security != u"starttls"))
        return std::nullopt;
    return MailServer { *host, int(*port), security == u"starttls" };
}

MailSettings mailSettings(const QString& secret)
{
    auto object = jsonObject(secret.toUtf8());
    const auto password = object ? textValue(*object, passwordKey) : std::nullopt;
    const auto command = object ? textsValue(*object, tokenKey) : std::nullopt;
    if (!password && !command)
        return { .password = secret, .tokenCommand = {}, .user = {}, .imap = {}, .smtp = {} };
    MailSettings settings {
        .password = password.value_or(QString()),
        .tokenCommand = command.value_or(QStringList()),
        .user = textValue(*object, userKey).value_or(QString()),
        .imap = mailServer(object->value(imapKey).toObject()),
        .smtp = mailServer(object->value(smtpKey).toObject()),
    };
    for (const QLatin1StringView key : { passwordKey, tokenKey, userKey, imapKey, smtpKey })
        object->remove(key);
    settings.others = *object;
    return settings;
}

QString mailSecret(const MailSettings& settings)
{
    QJsonObject object = settings.others;
    if (settings.tokenCommand.isEmpty())
        object.insert(passwordKey, settings.password);
    else
        object.insert(tokenKey, QJsonArray::fromStringList(settings.tokenCommand));
    if (!settings.user.isEmpty())
        object.insert(userKey, settings.user);
    if (settings.imap)
        object.insert(imapKey, serverObject(*settings.imap));
    if (settings.smtp)
        object.insert(smtpKey, serverObject(*settings.smtp));
    return QString::fromUtf8(compactJson(object));
}

}
