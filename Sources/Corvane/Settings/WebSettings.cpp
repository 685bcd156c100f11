#include "Settings/WebSettings.h"

#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Foundation/Text.h"
#include "Presentation/DateWords.h"
#include "Web/SessionStore.h"
#include "Web/WebSync.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype shownWorkspaces = 8;

/// "SHOP" and "in_review" as people write them.
QString word(const QString& constant)
{
    QString words = constant.toLower().replace(u'_', u' ');
    if (!words.isEmpty())
        words[0] = words[0].toUpper();
    return words;
}

QString either(const std::optional<QString>& first, const std::optional<QString>& second, const QString& otherwise)
{
    for (const auto& text : { first, second }) {
        if (text && !text->isEmpty())
            return *text;
    }
    return otherwise;
}

IntegrationLine line(const WebIntegration& each)
{
    return { either(each.displayName, each.username, word(each.type)), word(each.type) + u" · "_s + each.provider,
        each.isConnected() ? u"Connected"_s : word(each.status), each.isConnected() };
}

}

WebSettings::WebSettings(SessionStore& session, WebSync& web, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_session(session)
    , m_web(web)
    , m_scheduler(scheduler)
{
    connect(&m_session, &SessionStore::changed, this, &WebSettings::changed);
    connect(&m_web, &WebSync::changed, this, &WebSettings::search);
    search();
}

bool WebSettings::signedIn() const
{
    return m_session.signedIn();
}

bool WebSettings::busy() const
{
    return m_web.syncing();
}

bool WebSettings::failed() const
{
    return signedIn() && !busy() && !m_web.lastError().isEmpty();
}

QString WebSettings::stateText() const
{
    if (!signedIn())
        return u"Sign in, and the workspaces and integrations of your account appear here."_s;
    if (busy())
        return u"Asking the web…"_s;
    if (failed())
        return m_web.lastError();
    return m_web.lastSyncedAt() ? u"Updated "_s + DateWords(m_scheduler.nowMs()).ago(*m_web.lastSyncedAt())
                                : u"Not asked yet"_s;
}

QString WebSettings::nameOf(const QString& workspaceId) const
{
    const auto& all = m_web.workspaces();
    const auto found = std::ranges::find(all, workspaceId, &WorkspaceRow::workspaceId);
    return found == all.end() ? workspaceId : found->displayName();
}

QString WebSettings::workspaceText() const
{
    return m_web.selectedWorkspaceId() == "local"_L1 ? u"None: everything stays on this computer"_s
                                                     : nameOf(m_web.selectedWorkspaceId());
}

QString WebSettings::workspaceHint() const
{
    if (!m_refused.isEmpty())
        return m_refused;
    const bool vanished = m_web.lastSyncedAt() && !m_web.selectionIsKnown();
    return vanished ? u"The web no longer has this workspace. Its local data is kept and still shown."_s : QString();
}

/// The selected one first; only as many as are shown are put into words.
void WebSettings::search()
{
    m_workspaces.clear();
    m_found = 0;
    const QString wanted = folded(m_query.trimmed());
    for (const WorkspaceRow& row : m_web.workspaces()) {
        if (!wanted.isEmpty() && !folded(row.displayName()).contains(wanted))
            continue;
        ++m_found;
        const bool selected = row.workspaceId == m_web.selectedWorkspaceId();
        if (selected || m_workspaces.size() < shownWorkspaces)
            m_workspaces.insert(selected ? 0 : m_workspaces.size(), { row.workspaceId, row.displayName(), selected });
    }
    m_workspaces.resize(std::min(shownWorkspaces, m_workspaces.size()));
    Q_EMIT changed();
}

QString WebSettings::moreText() const
{
    if (m_found == 0)
        return m_query.isEmpty() ? QString() : u"No workspace has that name."_s;
    const qsizetype more = m_found - m_workspaces.size();
    return more == 0 ? QString() : u"%1 more: type a part of the name."_s.arg(QLocale().toString(more));
}

bool WebSettings::searchable() const
{
    return m_web.workspaces().size() > shownWorkspaces;
}

void WebSettings::setQuery(const QString& query)
{
    if (query == m_query)
        return;
    m_query = query;
    search();
}

QList<IntegrationLine> WebSettings::integrations() const
{
    QList<IntegrationLine> lines;
    for (const WebIntegration& each : m_web.integrations())
        lines.append(line(each));
    return lines;
}

QString WebSettings::emptyIntegrationsText() const
{
    return m_web.lastSyncedAt() ? u"The account has no integrations."_s : QString();
}

void WebSettings::refresh()
{
    m_refused.clear();
    m_web.refresh();
}

void WebSettings::choose(const QString& workspaceId)
{
    m_web.selectWorkspace(workspaceId);
    const QString& selected = m_web.selectedWorkspaceId();
    m_refused = selected == workspaceId
        ? QString()
        : u"%1 holds no conversations yet, so %2 stays in use."_s.arg(nameOf(workspaceId), nameOf(selected));
    Q_EMIT changed();
}

}
