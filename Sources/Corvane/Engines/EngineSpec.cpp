#include "Engines/EngineSpec.h"

#include "Engines/MediaPlaces.h"
#include "Foundation/Json.h"
#include "Foundation/Log.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"

#include <QDir>
#include <QFileInfo>
#include <QSysInfo>
#include <cstring>

namespace corvane {

namespace {

const QString envExecutable = QStringLiteral("/usr/bin/env");
const QString markVariable = QStringLiteral("CORVANE_ENGINE");

constexpr int nodeRefusedItsOptions = 9; // Node's own number for it
constexpr int envFoundNothing = 127;

QString markOf(const AppPaths& paths, const Account& account)
{
    return paths.applicationSupport + u':' + account.slug;
}

QString memoriesFolder(const AppPaths& paths)
{
    return paths.applicationSupport + QStringLiteral("/engines");
}

/// Folders of an account are deleted at a reset: a slug edited by hand must not lead anywhere else.
bool isFolderName(const QString& slug)
{
    return !slug.isEmpty() && !slug.startsWith(u'.') && !slug.contains(u'/');
}

bool isExecutableFile(const QString& path)
{
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

/// Node, its flags and one script; the child gets this process's environment with a PATH that finds its tools.
ProcessSpec nodeSpec(const AppPaths& paths, const QString& script, int heapMegabytes)
{
    const QString folder = engineDir(paths);
    ProcessSpec spec;
    spec.executable = nodePath(folder);
    spec.workingDirectory = folder;
    if (spec.executable == envExecutable)
        spec.arguments.append(QStringLiteral("node"));
    spec.arguments
        += { QStringLiteral("--max-old-space-size=%1").arg(heapMegabytes), QStringLiteral("--max-semi-space-size=2"),
               QStringLiteral("--experimental-strip-types"), QStringLiteral("--no-warnings"), folder + u'/' + script };

    spec.environment = QProcessEnvironment::systemEnvironment();
    const QString path = QStringLiteral("PATH");
    const QString tools = QStringLiteral("/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin");
    spec.environment.insert(
        path, spec.environment.contains(path) ? spec.environment.value(path) + u':' + tools : tools);
    return spec;
}

QString entryScript(Channel channel)
{
    switch (channel) {
    case Channel::WhatsApp:
        return QStringLiteral("src/main.ts");
    case Channel::LinkedIn:
        return QStringLiteral("src/linkedin-main.ts");
    case Channel::Email:
        return QStringLiteral("src/email-main.ts");
    case Channel::Telegram:
        return QStringLiteral("src/telegram-main.ts");
    case Channel::Discord:
        return QStringLiteral("src/discord-main.ts");
    case Channel::Slack:
        return QStringLiteral("src/slack-main.ts");
    case Channel::Instagram:
        return QStringLiteral("src/instagram-main.ts");
    case Channel::Messenger:
        return QStringLiteral("src/messenger-main.ts");
    case Channel::Sms:
        return QStringLiteral("src/twilio-main.ts");
    case Channel::IMessage:
        return QStringLiteral("src/imessage-main.ts");
    }
    Q_UNREACHABLE();
}

/// A secret of several parts; nothing where it is no JSON object of texts.
std::optional<QJsonObject> secretParts(const QString& secret)
{
    const auto object = jsonObject(secret.toUtf8());
    if (!object)
        return std::nullopt;
    for (const QJsonValue& value : *object) {
        if (!value.isString())
            return std::nullopt;
    }
    return object;
}

struct SecretVariable {
    QString name;
    QLatin1StringView key;
};

/// All of the variables or none, also where the surrounding environment holds some of them.
void insertSecretParts(QProcessEnvironment& environment, const QString& secret, const QList<SecretVariable>& variables)
{
    const auto parts = secretParts(secret);
    for (const SecretVariable& variable : variables) {
        if (parts)
            environment.insert(variable.name, parts->value(variable.key).toString());
        else
            environment.remove(variable.name);
    }
}

/// A browser-driven engine may run without a window where an earlier sign-in left its profile.
void insertBrowserVariables(
    QProcessEnvironment& environment, const QString& prefix, const AppPaths& paths, const Account& account)
{
    environment.insert(prefix + QStringLiteral("_ACCOUNT_NAME"), account.slug);
    const auto folder = stateFolder(paths, account);
    if (folder && QFileInfo(*folder).isDir())
        environment.insert(prefix + QStringLiteral("_HIDDEN"), QStringLiteral("1"));
    else
        environment.remove(prefix + QStringLiteral("_HIDDEN"));
    if (account.chromeProfile && !account.chromeProfile->isEmpty())
        environment.insert(prefix + QStringLiteral("_CHROME_PROFILE"), *account.chromeProfile);
}

void insertChannelVariables(
    QProcessEnvironment& environment, const AppPaths& paths, Keychain& keychain, const Account& account)
{
    const auto secret = [&] {
        return keychain.get(account.slug).value_or(QString());
    };
    switch (account.channel()) {
    case Channel::WhatsApp:
        environment.insert(QStringLiteral("WHATSAPP_ACCOUNT_NAME"), account.slug);
        break;
    case Channel::LinkedIn:
        insertBrowserVariables(environment, QStringLiteral("LINKEDIN"), paths, account);
        break;
    case Channel::Email:
        environment.insert(QStringLiteral("EMAIL_USER"), account.email.value_or(QString()));
        environment.insert(QStringLiteral("EMAIL_PASS"), secret());
        break;
    case Channel::Telegram:
        environment.insert(QStringLiteral("TELEGRAM_BOT_TOKEN"), secret());
        break;
    case Channel::Discord:
        environment.insert(QStringLiteral("DISCORD_BOT_TOKEN"), secret());
        break;
    case Channel::Slack:
        insertSecretParts(environment, secret(),
            { { QStringLiteral("SLACK_APP_TOKEN"), QLatin1StringView("app") },
                { QStringLiteral("SLACK_BOT_TOKEN"), QLatin1StringView("bot") } });
        break;
    case Channel::Instagram:
    case Channel::Messenger:
        environment.insert(QStringLiteral("META_MODE"),
            account.channel() == Channel::Instagram ? QStringLiteral("instagram") : QStringLiteral("messenger"));
        insertBrowserVariables(environment, QStringLiteral("META"), paths, account);
        break;
    case Channel::Sms:
        insertSecretParts(environment, secret(),
            { { QStringLiteral("TWILIO_SID"), QLatin1StringView("sid") },
                { QStringLiteral("TWILIO_AUTH"), QLatin1StringView("auth") },
                { QStringLiteral("TWILIO_FROM"), QLatin1StringView("from") } });
        break;
    case Channel::IMessage:
        break;
    }
}

}

QString engineDir(const AppPaths& paths)
{
    const QString bundled = paths.resources + QStringLiteral("/engine");
    if (QFileInfo::exists(bundled + QStringLiteral("/src/main.ts")))
        return bundled;
    return paths.home + QStringLiteral("/nimb/apps/nimb-local/mac/engine");
}

QString nodePath(const QString& engineDir)
{
    const bool isArm = QSysInfo::currentCpuArchitecture() == QLatin1StringView("arm64");
    const QStringList candidates {
        qEnvironmentVariable("CORVANE_NODE"),
        engineDir + QStringLiteral("/node_modules/node-linux-%1/bin/node").arg(isArm ? u"arm64" : u"x64"),
        QStringLiteral("/opt/homebrew/bin/node"),
        QStringLiteral("/usr/local/bin/node"),
        QStringLiteral("/usr/bin/node"),
    };
    const auto found = std::ranges::find_if(candidates, isExecutableFile);
    return found == candidates.end() ? envExecutable : *found;
}

std::optional<QString> memoryFolder(const AppPaths& paths, const Account& account)
{
    if (!isFolderName(account.slug))
        return std::nullopt;
    return memoriesFolder(paths) + u'/' + account.slug;
}

void askToRetell(const AppPaths& paths)
{
    const QDir memories(memoriesFolder(paths));
    for (const QString& slug : memories.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile mark(memories.filePath(slug + QStringLiteral("/retell")));
        if (!mark.open(QIODevice::WriteOnly))
            log(QStringLiteral("The engine of %1 cannot be asked to retell: %2").arg(slug, mark.errorString()));
    }
}

std::optional<QString> stateFolder(const AppPaths& paths, const Account& account)
{
    if (!isFolderName(account.slug))
        return std::nullopt;
    const auto named = [&](const QString& folder) {
        return paths.home + folder + account.slug;
    };
    switch (account.channel()) {
    case Channel::LinkedIn:
        return named(QStringLiteral("/.corvane-linkedin/"));
    case Channel::Instagram:
        return named(QStringLiteral("/.corvane-instagram/"));
    case Channel::Messenger:
        return named(QStringLiteral("/.corvane-messenger/"));
    default:
        return named(QStringLiteral("/.whatsapp-baileys/"));
    }
}

bool keepsSecret(Channel channel)
{
    switch (channel) {
    case Channel::Email:
    case Channel::Telegram:
    case Channel::Discord:
    case Channel::Slack:
    case Channel::Sms:
        return true;
    case Channel::WhatsApp:
    case Channel::LinkedIn:
    case Channel::Instagram:
    case Channel::Messenger:
    case Channel::IMessage:
        return false;
    }
    Q_UNREACHABLE();
}

ProcessSpec engineSpec(const AppPaths& paths, Keychain& keychain, const Account& account)
{
    const Channel channel = account.channel();
    ProcessSpec spec = nodeSpec(paths, entryScript(channel), channel == Channel::WhatsApp ? 384 : 128);
    spec.environment.insert(QStringLiteral("LOG_LEVEL"), QStringLiteral("info"));
    if (const auto folder = mediaFolder(paths, account))
        spec.environment.insert(QStringLiteral("CORVANE_MEDIA_DIR"), *folder);
    spec.environment.insert(QStringLiteral("CORVANE_ACCOUNT"), account.slug);
    if (const auto folder = memoryFolder(paths, account))
        spec.environment.insert(QStringLiteral("CORVANE_STATE_DIR"), *folder);
    spec.environment.insert(markVariable, markOf(paths, account));
    insertChannelVariables(spec.environment, paths, keychain, account);
    spec.environment.remove(QStringLiteral("MCP_HTTP_PORT")); // an engine opens no tool port of its own
    return spec;
}

ProcessSpec mailProbeSpec(const AppPaths& paths, const QString& mode, const QString& address, const QString& secret)
{
    ProcessSpec spec = nodeSpec(paths, entryScript(Channel::Email), 128);
    spec.arguments.append(mode);
    spec.environment.insert(QStringLiteral("EMAIL_USER"), address);
    if (secret.isEmpty())
        spec.environment.remove(QStringLiteral("EMAIL_PASS"));
    else
        spec.environment.insert(QStringLiteral("EMAIL_PASS"), secret);
    spec.environment.remove(markVariable);
    return spec;
}

QString engineMark(const AppPaths& paths, const Account& account)
{
    return markVariable + u'=' + markOf(paths, account);
}

QString exitWords(const ProcessSpec& spec, int code)
{
    const QString neededNode = QStringLiteral("Engines need Node 22.6 or newer.");
    if (code < 0)
        return QStringLiteral("Ended by signal %1 (%2)").arg(-code).arg(QString::fromLocal8Bit(::strsignal(-code)));
    if (code == envFoundNothing && spec.executable == envExecutable)
        return QStringLiteral("Node was not found. ") + neededNode;
    if (code == nodeRefusedItsOptions)
        return QStringLiteral("%1 is too old. ").arg(spec.executable) + neededNode;
    const auto isScript = [](const QString& argument) {
        return argument.endsWith(QLatin1StringView(".ts"));
    };
    const auto script = std::ranges::find_if(spec.arguments, isScript);
    if (code > 0 && script != spec.arguments.end() && !QFileInfo::exists(*script))
        return QStringLiteral("The engine's program is missing: ") + *script;
    return code == 0 ? QStringLiteral("Ended by itself") : QStringLiteral("Ended with exit code %1").arg(code);
}

ProcessSpec toolServerSpec(const AppPaths& paths, int port)
{
    ProcessSpec spec = nodeSpec(paths, QStringLiteral("src/nimb-mcp.ts"), 96);
    spec.environment.insert(QStringLiteral("NIMB_MCP_PORT"), QString::number(port));
    spec.environment.insert(QStringLiteral("CORVANE_API_BASE_URL"), QStringLiteral(CORVANE_API_BASE_URL));
    spec.environment.remove(markVariable);
    spec.pipes = false;
    return spec;
}

}
