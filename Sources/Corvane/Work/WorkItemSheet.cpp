#include "Work/WorkItemSheet.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkWrites.h"
#include "Work/WorkCreateFlows.h"

namespace corvane {

namespace {

constexpr int eventsShown = 100;
const QString notSaved = u"It was not saved: the database could not be written. Your text is still here."_s;

struct Field {
    const char* label;
    QString WorkItemRecord::* member;
};

constexpr std::array fields { Field { "Title", &WorkItemRecord::title }, Field { "Kind", &WorkItemRecord::kind },
    Field { "Status", &WorkItemRecord::status }, Field { "Priority", &WorkItemRecord::priority },
    Field { "Owner", &WorkItemRecord::owner }, Field { "Summary", &WorkItemRecord::summary } };

}

WorkItemSheet::WorkItemSheet(LocalDB& db, QObject* parent)
    : QObject(parent)
    , m_db(db)
{
}

void WorkItemSheet::open(const QString& id)
{
    const auto row = fetchWorkItem(m_db, id);
    if (!row)
        return close();
    adopt(*row);
    m_notice.clear();
    reload();
    Q_EMIT opened();
}

void WorkItemSheet::close()
{
    adopt({});
    m_notice.clear();
    m_events.assign({});
    Q_EMIT changed();
}

void WorkItemSheet::adopt(const WorkItemRecord& row)
{
    m_seen = row;
    m_edited = row;
    m_theirs.reset();
    m_clashes.clear();
}

void WorkItemSheet::reload()
{
    if (itemId().isEmpty())
        return;
    const auto row = fetchWorkItem(m_db, itemId());
    if (!row) {
        m_notice = u"This item is gone. You can still copy what you typed."_s;
    } else if (*row != m_seen) {
        if (dirty()) {
            m_theirs = row;
            compare();
        } else {
            adopt(*row);
            m_notice = u"It was changed while it was open; this is the current version."_s;
        }
    } else if (m_theirs) {
        m_theirs.reset();
        m_clashes.clear();
        m_notice.clear();
    }
    if (row)
        m_events.assign(timelineEvents(fetchItemEvents(m_db, *row, eventsShown), DateWords(m_db.nowMs())));
    Q_EMIT changed();
}

/// A field clashes if both sides changed it differently; a change by one side only is merged.
void WorkItemSheet::compare()
{
    m_clashes.clear();
    for (const auto& [label, member] : fields) {
        const QString& mine = m_edited.*member;
        const QString& theirs = (*m_theirs).*member;
        if (theirs == m_seen.*member || mine == theirs)
            continue;
        if (mine == m_seen.*member) {
            m_edited.*member = theirs;
            continue;
        }
        WorkFieldClash clash;
        clash.label = QString::fromLatin1(label);
        clash.mine = shownText(mine);
        clash.theirs = shownText(theirs);
        m_clashes.append(clash);
    }
    if (!m_clashes.isEmpty()) {
        m_notice = u"Somebody changed it while you were typing."_s;
        return;
    }
    WorkItemRecord merged = *m_theirs;
    for (const auto& [label, member] : fields)
        merged.*member = m_edited.*member;
    m_edited = merged;
    m_seen = *m_theirs;
    m_theirs.reset();
    m_notice = u"Somebody changed other fields in the meantime; your changes are kept."_s;
}

void WorkItemSheet::edit(QString WorkItemRecord::* field, const QString& value)
{
    if (m_edited.*field == value || itemId().isEmpty())
        return;
    m_edited.*field = value;
    m_notice.clear();
    if (m_theirs)
        compare();
    Q_EMIT changed();
}

void WorkItemSheet::save()
{
    if (!dirty() || m_theirs)
        return;
    if (m_edited.title.trimmed().isEmpty()) {
        m_notice = u"Title is required."_s;
        return Q_EMIT changed();
    }
    switch (updateWorkItem(m_db, m_seen, m_edited)) {
    case WorkItemSaved::Saved:
        return tell();
    case WorkItemSaved::Changed:
        return reload();
    case WorkItemSaved::Failed:
        m_notice = notSaved;
        return Q_EMIT changed();
    }
}

void WorkItemSheet::revert()
{
    open(itemId());
}

void WorkItemSheet::keepMine()
{
    if (!m_theirs)
        return;
    m_seen = *m_theirs;
    m_theirs.reset();
    m_clashes.clear();
    save();
}

void WorkItemSheet::takeTheirs()
{
    if (m_theirs)
        open(itemId());
}

void WorkItemSheet::markDone()
{
    const WorkContext context = fetchWorkContext(m_db, m_seen.contextId);
    if (markWorkItemDone(m_db, { .module = m_seen.module, .context = context }, m_seen))
        return tell();
    m_notice = notSaved;
    Q_EMIT changed();
}

void WorkItemSheet::tell()
{
    open(itemId());
    m_db.watch().tell(StoreSubject::Work);
    Q_EMIT wrote();
}

QString WorkItemSheet::facts() const
{
    const QString time = shownTime(m_seen.updatedAt, DateWords(m_db.nowMs()));
    return factLine({ m_seen.source.isEmpty() ? QString() : u"from "_s + shownLine(m_seen.source),
        time.isEmpty() ? QString() : u"changed "_s + time });
}

QString WorkItemSheet::lane() const
{
    const int lane = m_lanes.laneOf(m_seen.status);
    return lane == m_lanes.other() ? shownLine(m_seen.status) : m_lanes.name(lane);
}

QStringList WorkItemSheet::priorities() const
{
    QStringList words { u"high"_s, u"normal"_s, u"low"_s };
    if (!m_seen.priority.isEmpty() && !words.contains(m_seen.priority))
        words.insert(1, shownLine(m_seen.priority));
    return words;
}

bool WorkItemSheet::done() const
{
    return isFinishedStatus(m_seen.status);
}

QString WorkItemSheet::eventsText() const
{
    return m_events.rows().isEmpty() ? u"No evidence, decisions or messages about this item yet."_s : QString();
}

}
