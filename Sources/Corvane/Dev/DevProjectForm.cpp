#include "Dev/DevProjectForm.h"

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

const QString nameField = u"name"_s;
const QString slugField = u"slug"_s;
const QString folderField = u"controlDir"_s;

struct TextField {
    FieldSpec spec;
    QString OpsProjectRow::* member;
};

const QList<TextField>& textFields()
{
    static const QList<TextField> fields {
        { { .id = nameField, .label = u"Name"_s, .narrow = true }, &OpsProjectRow::name },
        { { .id = slugField, .label = u"Slug"_s, .narrow = true }, &OpsProjectRow::slug },
        { { .id = u"goal"_s, .label = u"Goal"_s, .maximumLines = 4 }, &OpsProjectRow::goal },
        { { .id = u"repoPath"_s, .label = u"Repository"_s, .placeholder = u"~/project"_s, .narrow = true },
            &OpsProjectRow::repoPath },
        { { .id = folderField, .label = u"Folder for agents' files"_s, .narrow = true }, &OpsProjectRow::controlDir },
        { { .id = u"category"_s, .label = u"Category"_s, .narrow = true }, &OpsProjectRow::category },
        { { .id = u"host"_s, .label = u"Host"_s, .placeholder = u"this computer"_s, .narrow = true },
            &OpsProjectRow::execHost },
    };
    return fields;
}

bool isSlug(const QString& text)
{
    return std::ranges::all_of(text, [](QChar letter) {
        return letter.isLetterOrNumber() || letter == u'-' || letter == u'_' || letter == u'.';
    }) && !text.startsWith(u'.');
}

QString folderOf(const QString& slug)
{
    return u"~/nimb/state/projects/"_s + projectFolder(slug);
}

}

DevProjectForm::DevProjectForm(DevDesk& desk, QObject* parent)
    : Form(parent)
    , m_desk(desk)
{
    QList<FieldSpec> specs;
    for (const TextField& each : textFields())
        specs.append(each.spec);
    setFields(specs);
    FormField& name = field(nameField);
    FormField& slug = field(slugField);
    FormField& folder = field(folderField);
    connect(&name, &FormField::textChanged, this, [this, &name, &slug] {
        if (!hasSlug() && !slug.isTyped())
            slug.fill(name.trimmed().isEmpty() ? QString() : normalizedLocalSlug(name.text(), m_desk.work.db.nowMs()));
    });
    connect(&slug, &FormField::textChanged, this, [this, &slug, &folder] {
        if (!hasSlug() && !folder.isTyped())
            folder.fill(slug.trimmed().isEmpty() ? QString() : folderOf(slug.trimmed()));
    });
}

QString DevProjectForm::title() const
{
    return m_seen.id.isEmpty() ? u"New project"_s : u"Project"_s;
}

QString DevProjectForm::buttonLabel() const
{
    return u"Save"_s;
}

bool DevProjectForm::complete() const
{
    return !field(nameField).trimmed().isEmpty();
}

QStringList DevProjectForm::statuses() const
{
    return { u"active"_s, u"paused"_s, u"done"_s };
}

void DevProjectForm::setStatus(const QString& status)
{
    m_status = status;
    Q_EMIT changed();
}

void DevProjectForm::setPriority(int priority)
{
    m_priority = std::clamp(priority, 1, lowestPriority);
    Q_EMIT changed();
}

void DevProjectForm::begin(const OpsProjectRow& row)
{
    m_seen = row;
    for (const TextField& each : textFields())
        field(each.spec.id).fill(row.*each.member);
    field(slugField).setReadOnly(hasSlug()); // its work records refer to it
    if (hasSlug() && row.controlDir.isEmpty())
        field(folderField).fill(folderOf(row.slug));
    m_status = row.status;
    m_priority = row.priority;
    m_error.clear();
    m_notice.clear();
    m_isOpen = true;
    Q_EMIT changed();
}

void DevProjectForm::beginNewProject()
{
    OpsProjectRow row;
    row.status = statuses().first();
    begin(row);
}

void DevProjectForm::beginEditProject()
{
    if (m_desk.hasProject())
        begin(m_desk.project);
}

OpsProjectRow DevProjectForm::draft() const
{
    OpsProjectRow row = m_seen;
    for (const TextField& each : textFields())
        row.*each.member = field(each.spec.id).trimmed();
    if (hasSlug())
        row.slug = m_seen.slug;
    else if (row.slug.isEmpty())
        row.slug = normalizedLocalSlug(row.name, m_desk.work.db.nowMs());
    if (row.controlDir.isEmpty())
        row.controlDir = folderOf(row.slug);
    row.status = m_status;
    row.priority = m_priority;
    return row;
}

/// Why it cannot be saved; empty if it can.
QString DevProjectForm::refusal(const OpsProjectRow& draft) const
{
    if (!hasSlug() && !isSlug(draft.slug))
        return u"A slug has only letters, digits, “-”, “_” and “.”, and does not begin with a dot."_s;
    for (const QString& path : { draft.repoPath, draft.controlDir }) {
        if (!path.isEmpty() && QDir::isRelativePath(m_desk.expanded(path)))
            return u"The path of a folder begins with “/” or “~”."_s;
    }
    const QList<OpsProjectRow> all = fetchOpsProjects(m_desk.work.db);
    const auto taken = std::ranges::find(all, draft.slug, &OpsProjectRow::slug);
    return taken != all.end() && taken->id != draft.id
        ? u"“%1” is a project already. Give this one another slug."_s.arg(draft.slug)
        : QString();
}

void DevProjectForm::refuse(const QString& reason)
{
    m_error = reason;
    Q_EMIT changed();
}

void DevProjectForm::submit()
{
    if (!complete())
        return;
    const OpsProjectRow project = draft();
    if (const QString reason = refusal(project); !reason.isEmpty())
        return refuse(reason);
    const auto row = upsertOpsProject(m_desk.work.db, project);
    if (!row)
        return refuse(u"Could not save project."_s);
    if (const auto mirror = writeProjectMirror(*row, m_desk.expanded(row->controlDir)); !mirror) {
        log(u"LocalDB project mirror error: "_s + mirror.error().message);
        m_notice = u"The project is saved. Its file for agents is not: "_s + mirror.error().message;
    }
    m_isOpen = false;
    m_desk.told();
    Q_EMIT saved(row->id);
    Q_EMIT changed();
}

void DevProjectForm::close()
{
    if (!std::exchange(m_isOpen, false))
        return;
    m_error.clear();
    Q_EMIT changed();
}

void DevProjectForm::dismissNotice()
{
    m_notice.clear();
    Q_EMIT changed();
}

}
