#include "Web/Bootstrap.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QJsonArray>
#include <QMap>
#include <algorithm>

namespace corvane {

namespace {

/// Reads an object's members and notes where one is missing or of another type.
class Fields {
public:
    Fields(const QJsonValue& value, bool& sound)
        : m_object(value.toObject())
        , m_sound(sound)
    {
        m_sound = m_sound && value.isObject();
    }

    QString text(const char* key) const
    {
        const QJsonValue value = at(key);
        m_sound = m_sound && value.isString();
        return value.toString();
    }
    std::optional<QString> optionalText(const char* key) const
    {
        return at(key).isNull() || at(key).isUndefined() ? std::nullopt : std::optional(text(key));
    }
    std::optional<bool> optionalBoolean(const char* key) const
    {
        const QJsonValue value = at(key);
        if (value.isNull() || value.isUndefined())
            return std::nullopt;
        m_sound = m_sound && value.isBool();
        return value.toBool();
    }
    template <typename Read> auto list(const char* key, Read read) const
    {
        m_sound = m_sound && at(key).isArray();
        return optionalList(key, read);
    }
    template <typename Read> auto optionalList(const char* key, Read read) const
    {
        QList<std::invoke_result_t<Read, Fields>> result;
        const QJsonValue value = at(key);
        m_sound = m_sound && (value.isArray() || value.isNull() || value.isUndefined());
        for (const QJsonValue& element : value.toArray()) {
            if (!m_sound)
                break;
            result.append(read(Fields(element, m_sound)));
        }
        return result;
    }

private:
    QJsonValue at(const char* key) const { return m_object[QLatin1StringView(key)]; }

    QJsonObject m_object;
    bool& m_sound;
};

WebIntegration integration(const Fields& from)
{
    return { from.text("id"), from.text("type"), from.text("provider"), from.optionalText("displayName"),
        from.optionalText("username"), from.text("status"), from.optionalText("avatarUrl"),
        from.optionalText("workspaceId") };
}

WsNode workspace(const Fields& from)
{
    return { from.text("id"), from.text("name"), from.optionalText("slug"), from.optionalBoolean("isDefault"),
        from.optionalText("status"), from.optionalList("integrations", integration) };
}

OrgNode organization(const Fields& from)
{
    return { from.text("id"), from.text("name"), from.optionalText("slug"), from.list("workspaces", workspace),
        from.optionalList("integrations", integration) };
}

std::optional<BootstrapData> decode(const QJsonValue& value)
{
    bool sound = true;
    const Fields from(value, sound);
    BootstrapData data { from.optionalText("activeOrganizationId"), from.list("organizations", organization) };
    return sound ? std::optional(std::move(data)) : std::nullopt;
}

std::optional<QString> preferredWorkspace(const BootstrapData& data, const QList<WorkspaceRow>& rows)
{
    if (!data.activeOrganizationId)
        return std::nullopt;
    const auto find = [&](bool onlyDefault) {
        return std::ranges::find_if(rows, [&](const WorkspaceRow& row) {
            return row.orgId == *data.activeOrganizationId && (row.isDefault || !onlyDefault);
        });
    };
    auto found = find(true);
    if (found == rows.end())
        found = find(false);
    return found == rows.end() ? std::nullopt : std::optional(found->workspaceId);
}

/// As much of an answer's body as a message shows.
QString excerpt(const QByteArray& body)
{
    constexpr int shown = 160;
    return firstCharacters(QString::fromUtf8(body.left(shown * 32)), shown);
}

}

std::optional<BootstrapData> decodeBootstrap(const QByteArray& json)
{
    const auto document = jsonObject(json);
    if (!document)
        return std::nullopt;
    auto wrapped = decode((*document)["data"_L1]);
    return wrapped ? wrapped : decode(*document);
}

BootstrapLists flattened(const BootstrapData& data)
{
    BootstrapLists lists;
    QMap<QString, WebIntegration> integrations;
    const auto collect = [&](const QList<WebIntegration>& found) {
        for (const WebIntegration& each : found)
            integrations.insert(each.id, each);
    };
    for (const OrgNode& org : data.organizations) {
        for (const WsNode& node : org.workspaces) {
            lists.workspaces.append({ node.id, node.name, node.slug.value_or(QString()), org.id, org.name,
                org.slug.value_or(QString()), node.isDefault.value_or(false) });
            collect(node.integrations);
        }
        collect(org.integrations);
    }
    lists.integrations = integrations.values();
    std::ranges::sort(lists.integrations, {}, [](const WebIntegration& each) {
        return std::tuple(!each.isConnected(), each.type, each.displayName.value_or(QString()), each.id);
    });
    lists.preferredWorkspaceId = preferredWorkspace(data, lists.workspaces);
    return lists;
}

std::expected<BootstrapLists, WebSyncError> readBootstrap(int status, const QByteArray& body, const QString& path)
{
    if (status < 200 || status > 299)
        return std::unexpected(
            WebSyncError { u"HTTP %1 on %2 — "_s.arg(QString::number(status), path) + excerpt(body), status == 401 });
    const auto data = decodeBootstrap(body);
    if (!data)
        return std::unexpected(WebSyncError { u"Unexpected response shape: "_s + excerpt(body) });
    return flattened(*data);
}

}
