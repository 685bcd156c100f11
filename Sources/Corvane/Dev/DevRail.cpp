#include "Dev/DevRail.h"

#include "Foundation/Literals.h"
#include "Platform/Desktop.h"

#include <algorithm>

namespace corvane {

namespace {

using Scope = TerminalWorkspaceScope;

struct ScopeWords {
    Scope scope;
    const char* id;
    const char* label;
};
constexpr std::array<ScopeWords, 4> scopeWords { { { Scope::All, "all", "All" }, { Scope::Local, "local", "Local" },
    { Scope::Remote, "remote", "Remote" }, { Scope::Asks, "asks", "Asks" } } };

}

DevRail::DevRail(DevDesk& desk, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
    , m_projects(desk.work, this)
    , m_form(desk, this)
{
    m_projects.setArrangement([this](const QList<OpsProjectRow>& all) { return arranged(all); });
    connect(&m_form, &DevProjectForm::saved, this, [this](const QString& id) {
        m_projects.select(id);
        reload();
    });
}

/// By group, in the order of each group's first project.
QList<OpsProjectRow> DevRail::arranged(const QList<OpsProjectRow>& all)
{
    const QString hostName = m_desk.desktop.hostName();
    m_counts.clear();
    QStringList groups;
    QHash<QString, QList<OpsProjectRow>> byGroup;
    for (const OpsProjectRow& row : all) {
        for (const ScopeWords& each : scopeWords)
            m_counts[each.scope] += isListed(row, m_desk.console, each.scope, {}, hostName) ? 1 : 0;
        if (!isListed(row, m_desk.console, m_scope, m_search, hostName))
            continue;
        const QString group = clientName(row);
        if (!byGroup.contains(group))
            groups.append(group);
        byGroup[group].append(row);
    }
    QList<OpsProjectRow> listed;
    for (const QString& group : std::as_const(groups))
        listed += byGroup.value(group);
    return listed;
}

void DevRail::reload()
{
    m_projects.reload();
    adopt();
}

void DevRail::adopt()
{
    m_desk.project = m_projects.project();
    m_desk.context
        = m_desk.hasProject() ? fetchWorkContext(m_desk.work.db, devModule, m_desk.project.slug) : WorkContext();
    Q_EMIT changed();
    Q_EMIT selected();
}

QList<TabItem> DevRail::scopes() const
{
    QList<TabItem> items;
    for (const ScopeWords& each : scopeWords)
        items.append({ QLatin1StringView(each.id), QLatin1StringView(each.label), m_counts.value(each.scope) });
    return items;
}

void DevRail::setScope(TerminalWorkspaceScope scope)
{
    if (std::exchange(m_scope, scope) != scope)
        reload();
}

QString DevRail::scopeId() const
{
    return QLatin1StringView(std::ranges::find(scopeWords, m_scope, &ScopeWords::scope)->id);
}

void DevRail::setScopeId(const QString& id)
{
    for (const ScopeWords& each : scopeWords) {
        if (id == QLatin1StringView(each.id))
            setScope(each.scope);
    }
}

void DevRail::setSearch(const QString& search)
{
    if (std::exchange(m_search, search) != search)
        reload();
}

QString DevRail::emptyText() const
{
    if (!m_projects.rows().isEmpty())
        return {};
    return m_search.isEmpty() && m_scope == Scope::All
        ? u"No ops projects are registered yet. You can still open a local terminal."_s
        : u"Nothing found"_s;
}

void DevRail::select(const QString& id)
{
    m_projects.select(id);
    adopt();
}

void DevRail::step(int by)
{
    const QList<OpsProjectSeed>& rows = m_projects.rows();
    if (rows.isEmpty())
        return;
    const auto at = std::ranges::find(rows, m_projects.selected(), &OpsProjectSeed::id);
    const qsizetype next = at == rows.end() ? 0 : std::clamp<qsizetype>(at - rows.begin() + by, 0, rows.size() - 1);
    select(rows.at(next).id);
}

}
