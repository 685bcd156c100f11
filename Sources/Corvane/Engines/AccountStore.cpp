#include "Engines/AccountStore.h"

#include "Foundation/CopyAside.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/PrivateFile.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

constexpr int firstPort = 8790; // clear of the shared tool server's 8765

/// Reads the keys of one account; any missing or mistyped key makes it invalid.
class AccountReader {
public:
    explicit AccountReader(const QJsonObject& object)
        : m_object(object)
    {
    }

    QString text(QLatin1StringView key) { return required(optionalText(key), key); }
    bool boolean(QLatin1StringView key) { return required(optionalBoolean(key), key); }

    int integer(QLatin1StringView key)
    {
        const double number = m_object.value(key).toDouble(std::nan(""));
        const bool fits = std::abs(number) <= std::numeric_limits<int>::max() && std::trunc(number) == number;
        m_valid = m_valid && fits;
        return fits ? static_cast<int>(number) : 0;
    }

    std::optional<QString> optionalText(QLatin1StringView key)
    {
        const QJsonValue value = m_object.value(key);
        m_valid = m_valid && (isAbsent(value) || value.isString());
        return value.isString() ? std::optional(value.toString()) : std::nullopt;
    }

    std::optional<bool> optionalBoolean(QLatin1StringView key)
    {
        const QJsonValue value = m_object.value(key);
        m_valid = m_valid && (isAbsent(value) || value.isBool());
        return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
    }

    bool isValid() const { return m_valid; }

private:
    static bool isAbsent(const QJsonValue& value) { return value.isUndefined() || value.isNull(); }

    template <typename Value> Value required(const std::optional<Value>& value, QLatin1StringView key)
    {
        m_valid = m_valid && value.has_value() && m_object.contains(key);
        return value.value_or(Value());
    }

    const QJsonObject& m_object;
    bool m_valid = true;
};

std::optional<Account> decodeAccount(const QJsonObject& object)
{
    AccountReader reader(object);
    Account account;
    account.id = QUuid::fromString(reader.text("id"_L1));
    account.name = reader.text("name"_L1);
    account.slug = reader.text("slug"_L1);
    account.mcpEnabled = reader.boolean("mcpEnabled"_L1);
    account.mcpPort = reader.integer("mcpPort"_L1);
    account.autoStart = reader.boolean("autoStart"_L1);
    account.channelRaw = reader.optionalText("channelRaw"_L1);
    account.chromeProfile = reader.optionalText("chromeProfile"_L1);
    account.email = reader.optionalText("email"_L1);
    account.paused = reader.optionalBoolean("paused"_L1);
    account.startAtBoot = reader.optionalBoolean("startAtBoot"_L1);
    return reader.isValid() && !account.id.isNull() ? std::optional(account) : std::nullopt;
}

QByteArray jsonText(const QJsonValue& value)
{
    const QByteArray array = QJsonDocument(QJsonArray { value }).toJson(QJsonDocument::Compact);
    return array.sliced(1, array.size() - 2);
}

/// Written by hand, because QJsonObject sorts its keys and this file's keys have an order.
QByteArray encodeAccount(const Account& account)
{
    QByteArrayList members;
    const auto add = [&](const char* key, const QJsonValue& value) {
        members.append('"' + QByteArray(key) + "\":" + jsonText(value));
    };
    const auto addOptional = [&](const char* key, const auto& value) {
        if (value)
            add(key, *value);
    };
    add("id", account.id.toString(QUuid::WithoutBraces).toUpper());
    add("name", account.name);
    add("slug", account.slug);
    add("mcpEnabled", account.mcpEnabled);
    add("mcpPort", account.mcpPort);
    add("autoStart", account.autoStart);
    addOptional("channelRaw", account.channelRaw);
    addOptional("chromeProfile", account.chromeProfile);
    addOptional("email", account.email);
    addOptional("paused", account.paused);
    addOptional("startAtBoot", account.startAtBoot);
    return '{' + members.join(',') + '}';
}

QString plainSlug(const QString& name)
{
    static const QRegularExpression others(u"[^a-z0-9]+"_s);
    QString slug = name.toLower().replace(others, u"-"_s);
    while (slug.startsWith(u'-'))
        slug.remove(0, 1);
    while (slug.endsWith(u'-'))
        slug.chop(1);
    return slug.isEmpty() ? u"account"_s : slug;
}

}

std::optional<QList<Account>> decodeAccounts(const QByteArray& json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    QList<Account> accounts;
    for (const QJsonValue& value : document.array()) {
        const auto account = decodeAccount(value.toObject());
        if (!account)
            return std::nullopt;
        accounts.append(*account);
    }
    return accounts;
}

QByteArray encodeAccounts(const QList<Account>& accounts)
{
    QByteArrayList lines;
    for (const Account& account : accounts)
        lines.append(encodeAccount(account));
    return '[' + lines.join(",\n") + "]\n";
}

AccountStore::AccountStore(const QString& folder, QObject* parent)
    : QObject(parent)
    , m_filePath(folder + u"/accounts.json"_s)
{
    QDir().mkpath(folder);
    QFile file(m_filePath);
    if (!file.exists())
        return;
    const auto decoded = file.open(QIODevice::ReadOnly) ? decodeAccounts(file.readAll()) : std::nullopt;
    m_fileIsDamaged = !decoded;
    m_accounts = decoded.value_or(QList<Account>());
}

std::optional<Account> AccountStore::find(const QUuid& id) const
{
    const auto found = std::ranges::find(m_accounts, id, &Account::id);
    return found == m_accounts.end() ? std::nullopt : std::optional(*found);
}

std::optional<Account> AccountStore::findBySlug(const QString& slug) const
{
    const auto found = std::ranges::find(m_accounts, slug, &Account::slug);
    return found == m_accounts.end() ? std::nullopt : std::optional(*found);
}

Account AccountStore::add(const QString& name, Channel channel)
{
    Account account;
    account.id = QUuid::createUuid();
    account.slug = freeSlug(name);
    const QString trimmed = name.trimmed();
    account.name = trimmed.isEmpty() ? account.slug : trimmed;
    account.mcpPort = nextFreePort();
    account.autoStart = true;
    account.channelRaw = channelRaw(channel);
    m_accounts.append(account);
    save();
    return account;
}

void AccountStore::update(const Account& account)
{
    const auto found = std::ranges::find(m_accounts, account.id, &Account::id);
    if (found == m_accounts.end())
        return;
    *found = account;
    save();
}

void AccountStore::remove(const Account& account)
{
    if (m_accounts.removeIf([&](const Account& other) { return other.id == account.id; }) > 0)
        save();
}

int AccountStore::nextFreePort() const
{
    int port = firstPort;
    while (std::ranges::find(m_accounts, port, &Account::mcpPort) != m_accounts.end())
        ++port;
    return port;
}

QString AccountStore::freeSlug(const QString& name) const
{
    const QString plain = plainSlug(name);
    QString slug = plain;
    for (int n = 2; findBySlug(slug); ++n)
        slug = u"%1-%2"_s.arg(plain).arg(n);
    return slug;
}

void AccountStore::save()
{
    if (!m_fileIsDamaged || copyAside(m_filePath)) {
        m_fileIsDamaged = false;
        if (!writePrivateFile(m_filePath, encodeAccounts(m_accounts)))
            log(u"AccountStore: could not write %1"_s.arg(m_filePath));
    }
    Q_EMIT accountsChanged();
}

}
