#include "Dev/DevProjectSheet.h"

#include "Dev/ProjectMirror.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Store/Core/LocalDB.h"
#include "Work/WorkWords.h"

#include <QDir>
#include <algorithm>

namespace corvane {

namespace {

constexpr int lowestPriority = 9;

bool isSlug(const QString& text)
{
    return std::ranges::all_of(text, [](QChar letter) {
        return letter.isLetterOrNumber() || letter == u'-' || letter == u'_' || letter == u'.';
    }) && !text.startsWith(u'.');
}

}

DevProjectSheet::DevProjectSheet(DevDesk& desk, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
{
}

QString DevProjectSheet::heading() const
{
    return m_seen.id.isEmpty() ? u"New project"_s : u"Project"_s;
}

QStringList DevProjectSheet::statuses() const
{
    return { u"active"_s, u"paused"_s, u"done"_s };
}

QString DevProjectSheet::slugOf(const OpsProjectRow& draft) const
{
    if (slugFixed())
        return m_seen.slug;
    const QString typed = draft.slug.trimmed();
    if (!typed.isEmpty() || draft.name.trimmed().isEmpty())
        return typed;
    return normalizedLocalSlug(draft.name, m_desk.work.db.nowMs());
}

QString DevProjectSheet::controlDirHint() const
{
    return u"~/nimb/state/projects/"_s + projectFolder(slugOf(m_draft));
}

void DevProjectSheet::edit(QString OpsProjectRow::* field, const QString& value)
{
    if (std::exchange(m_draft.*field, value) != value)
        Q_EMIT changed();
}

void DevProjectSheet::setProjectDraftPriority(int priority)
{
    priority = std::clamp(priority, 1, lowestPriority);
    if (std::exchange(m_draft.priority, priority) != priority)
        Q_EMIT changed();
}

void DevProjectSheet::begin(const OpsProjectRow& draft)
{
    m_seen = draft;
    m_draft = draft;
    m_error.clear();
    m_notice.clear();
    m_open = true;
    Q_EMIT changed();
}

void DevProjectSheet::beginNewProject()
{
    OpsProjectRow draft;
    draft.status = statuses().first();
    begin(draft);
}

void DevProjectSheet::beginEditProject()
{
    if (m_desk.hasProject())
        begin(m_desk.project);
}

QString DevProjectSheet::refusal(const OpsProjectRow& draft) const
{
    if (draft.name.isEmpty())
        return u"Name is required."_s;
    if (draft.slug != m_seen.slug && !isSlug(draft.slug))
        return u"A slug holds letters, digits, “-”, “_” and “.” alone, and does not begin with a dot."_s;
    for (const QString& path : { draft.repoPath, draft.controlDir }) {
        if (!path.isEmpty() && QDir::isRelativePath(m_desk.expanded(path)))
            return u"A folder is told from the root on, or from “~”."_s;
    }
    return {};
}

void DevProjectSheet::save()
{
    OpsProjectRow draft = m_draft;
    draft.name = draft.name.trimmed();
    draft.slug = slugOf(draft);
    draft.repoPath = draft.repoPath.trimmed();
    draft.controlDir = draft.controlDir.trimmed().isEmpty() ? controlDirHint() : draft.controlDir.trimmed();
    m_error = refusal(draft);
    if (!m_error.isEmpty())
        return Q_EMIT changed();
    const QList<OpsProjectRow> all = fetchOpsProjects(m_desk.work.db);
    const auto taken = std::ranges::find(all, draft.slug, &OpsProjectRow::slug);
    if (taken != all.end() && taken->id != draft.id) {
        m_error = u"“%1” is a project already. Give this one another slug."_s.arg(draft.slug);
        return Q_EMIT changed();
    }
    const auto row = upsertOpsProject(m_desk.work.db, draft);
    if (!row) {
        m_error = u"Could not save project."_s;
        return Q_EMIT changed();
    }
    if (const auto mirror = writeProjectMirror(*row, m_desk.expanded(row->controlDir)); !mirror) {
        log(u"LocalDB project mirror error: "_s + mirror.error().message);
        m_notice = u"The project is saved. Its file for agents is not: "_s + mirror.error().message;
    }
    m_open = false;
    m_desk.told();
    Q_EMIT saved(row->id);
    Q_EMIT changed();
}

void DevProjectSheet::cancel()
{
    m_open = false;
    m_error.clear();
    Q_EMIT changed();
}

void DevProjectSheet::dismissNotice()
{
    m_notice.clear();
    Q_EMIT changed();
}

}
