#include "Engines/EngineSpec.h"

#include "Engines/MediaPlaces.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"

#include <QDir>
#include <QFileInfo>
#include <QSysInfo>
#include <cstring>

namespace corvane {

namespace {

const QString envExecutable = u"/usr/bin/env"_s;
const QString markVariable = u"CORVANE_ENGINE"_s;

constexpr int nodeRefusedItsOptions = 9; // Node's exit code for invalid options
constexpr int envFoundNothing = 127;

QString markOf(const AppPaths& paths, const Account& account)
{
    return paths.applicationSupport + u':' + account.slug;
}

QString memoriesFolder(const AppPaths& paths)
{
    return paths.applicationSupport + u"/engines"_s;
}

/// A reset deletes the account's folders: an edited slug must not lead outside.
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
        spec.arguments.append(u"node"_s);
    spec.arguments += { u"--max-old-space-size=%1"_s.arg(heapMegabytes), u"--max-semi-space-size=2"_s,
        u"--experimental-strip-types"_s, u"--no-warnings"_s, folder + u'/' + script };

    spec.environment = QProcessEnvironment::systemEnvironment();
    const QString path = u"PATH"_s;
    const QString tools = u"/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin"_s;
    spec.environment.insert(
        path, spec.environment.contains(path) ? spec.environment.value(path) + u':' + tools : tools);
    return spec;
}

QString entryScript(Channel channel)
{
    switch (channel) {
    case Channel::WhatsApp:
        return u"src/main.ts"_s;
    case Channel::LinkedIn:
        return u"src/linkedin-main.ts"_s;
    case Channel::Email:
        return u"src/email-main.ts"_s;
    case Channel::Telegram:
        return u"src/telegram-main.ts"_s;
    case Channel::Discord:
        return u"src/discord-main.ts"_s;
    case Channel::Slack:
        return u"src/slack-main.ts"_s;
    case Channel::Instagram:
        return u"src/instagram-main.ts"_s;
    case Channel::Messenger:
        return u"src/messenger-main.ts"_s;
    case Channel::Sms:
        return u"src/twilio-main.ts"_s;
    case Channel::IMessage:
        return u"src/imessage-main.ts"_s;
    }
    Q_UNREACHABLE();
}

/// A secret with several parts; nothing if it is not a JSON object of texts.
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

/// Sets all variables or none, even if the environment already has some of them.
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

/// A browser-based engine runs headless once an earlier sign-in has left its profile.
void insertBrowserVariables(
    QProcessEnvironment& environment, const QString& prefix, const AppPaths& paths, const Account& account)
{
    environment.insert(prefix + u"_ACCOUNT_NAME"_s, account.slug);
    const auto folder = stateFolder(paths, account);
    if (folder && QFileInfo(*folder).isDir())
        environment.insert(prefix + u"_HIDDEN"_s, u"1"_s);
    else
        environment.remove(prefix + u"_HIDDEN"_s);
    if (account.chromeProfile && !account.chromeProfile->isEmpty())
        environment.insert(prefix + u"_CHROME_PROFILE"_s, *account.chromeProfile);
}

void insertChannelVariables(
    QProcessEnvironment& environment, const AppPaths& paths, Keychain& keychain, const Account& account)
{
    const auto secret = [&] {
        return keychain.get(account.slug).value_or(QString());
    };
    switch (account.channel()) {
    case Channel::WhatsApp:
        environment.insert(u"WHATSAPP_ACCOUNT_NAME"_s, account.slug);
        break;
    case Channel::LinkedIn:
        insertBrowserVariables(environment, u"LINKEDIN"_s, paths, account);
        break;
    case Channel::Email:
        environment.insert(u"EMAIL_USER"_s, account.email.value_or(QString()));
        environment.insert(u"EMAIL_PASS"_s, secret());
        break;
    case Channel::Telegram:
        environment.insert(u"TELEGRAM_BOT_TOKEN"_s, secret());
        break;
    case Channel::Discord:
        environment.insert(u"DISCORD_BOT_TOKEN"_s, secret());
        break;
    case Channel::Slack:
        insertSecretParts(
            environment, secret(), { { u"SLACK_APP_TOKEN"_s, "app"_L1 }, { u"SLACK_BOT_TOKEN"_s, "bot"_L1 } });
        break;
    case Channel::Instagram:
    case Channel::Messenger:
        environment.insert(u"META_MODE"_s, account.channel() == Channel::Instagram ? u"instagram"_s : u"messenger"_s);
        insertBrowserVariables(environment, u"META"_s, paths, account);
        break;
    case Channel::Sms:
        insertSecretParts(environment, secret(),
            { { u"TWILIO_SID"_s, "sid"_L1 }, { u"TWILIO_AUTH"_s, "auth"_L1 }, { u"TWILIO_FROM"_s, "from"_L1 } });
        break;
    case Channel::IMessage:
        break;
    }
}

}

QString engineDir(const AppPaths& paths)
{
    const QString bundled = paths.resources + u"/engine"_s;
    if (QFileInfo::exists(bundled + u"/src/main.ts"_s))
        return bundled;
    return paths.home + u"/nimb/apps/nimb-local/mac/engine"_s;
}

QString nodePath(const QString& engineDir)
{
    const bool isArm = QSysInfo::currentCpuArchitecture() == "arm64"_L1;
    const QStringList candidates {
        qEnvironmentVariable("CORVANE_NODE"),
        engineDir + u"/node_modules/node-linux-%1/bin/node"_s.arg(isArm ? u"arm64" : u"x64"),
        u"/opt/homebrew/bin/node"_s,
        u"/usr/local/bin/node"_s,
        u"/usr/bin/node"_s,
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
        QFile mark(memories.filePath(slug + u"/retell"_s));
        if (!mark.open(QIODevice::WriteOnly))
            log(u"The engine of %1 cannot be asked to retell: %2"_s.arg(slug, mark.errorString()));
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
        return named(u"/.corvane-linkedin/"_s);
    case Channel::Instagram:
        return named(u"/.corvane-instagram/"_s);
    case Channel::Messenger:
        return named(u"/.corvane-messenger/"_s);
    default:
        return named(u"/.whatsapp-baileys/"_s);
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
    spec.environment.insert(u"LOG_LEVEL"_s, u"info"_s);
    if (const auto folder = mediaFolder(paths, account))
        spec.environment.insert(u"CORVANE_MEDIA_DIR"_s, *folder);
    spec.environment.insert(u"CORVANE_ACCOUNT"_s, account.slug);
    if (const auto folder = memoryFolder(paths, account))
        spec.environment.insert(u"CORVANE_STATE_DIR"_s, *folder);
    spec.environment.insert(markVariable, markOf(paths, account));
    insertChannelVariables(spec.environment, paths, keychain, account);
    spec.environment.remove(u"MCP_HTTP_PORT"_s); // an engine must not open a tool port
    return spec;
}

ProcessSpec mailProbeSpec(const AppPaths& paths, const QString& mode, const QString& address, const QString& secret)
{
    ProcessSpec spec = nodeSpec(paths, entryScript(Channel::Email), 128);
    spec.arguments.append(mode);
    spec.environment.insert(u"EMAIL_USER"_s, address);
    if (secret.isEmpty())
        spec.environment.remove(u"EMAIL_PASS"_s);
    else
        spec.environment.insert(u"EMAIL_PASS"_s, secret);
    spec.environment.remove(markVariable);
    return spec;
}

QString engineMark(const AppPaths& paths, const Account& account)
{
    return markVariable + u'=' + markOf(paths, account);
}

QString exitWords(const ProcessSpec& spec, int code)
{
    const QString neededNode = u"Engines need Node 22.6 or newer."_s;
    if (code < 0)
        return u"Ended by signal %1 (%2)"_s.arg(-code).arg(QString::fromLocal8Bit(::strsignal(-code)));
    if (code == envFoundNothing && spec.executable == envExecutable)
        return u"Node was not found. "_s + neededNode;
    if (code == nodeRefusedItsOptions)
        return u"%1 is too old. "_s.arg(spec.executable) + neededNode;
    const auto isScript = [](const QString& argument) {
        return argument.endsWith(".ts"_L1);
    };
    const auto script = std::ranges::find_if(spec.arguments, isScript);
    if (code > 0 && script != spec.arguments.end() && !QFileInfo::exists(*script))
        return u"The engine's program is missing: "_s + *script;
    return code == 0 ? u"Ended by itself"_s : u"Ended with exit code %1"_s.arg(code);
}

ProcessSpec toolServerSpec(const AppPaths& paths, int port)
{
    ProcessSpec spec = nodeSpec(paths, u"src/nimb-mcp.ts"_s, 96);
    spec.environment.insert(u"NIMB_MCP_PORT"_s, QString::number(port));
    spec.environment.insert(u"CORVANE_API_BASE_URL"_s, QStringLiteral(CORVANE_API_BASE_URL));
    spec.environment.remove(markVariable);
    spec.pipes = false;
    return spec;
}

}
