#include "Dev/DevSRS.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/LocalDB.h"
#include "Work/WorkRows.h"

namespace corvane {

namespace {

struct Field {
    const char* id;
    const char* label;
    QString DevSRSRow::* member;
};

constexpr std::array<Field, 8> fields { {
    { "overview", "Overview", &DevSRSRow::overview },
    { "users", "Users", &DevSRSRow::users },
    { "requirements", "Requirements", &DevSRSRow::requirements },
    { "modules", "Modules", &DevSRSRow::modules },
    { "flows", "Flows", &DevSRSRow::flows },
    { "acceptance", "Acceptance", &DevSRSRow::acceptance },
    { "constraints", "Constraints", &DevSRSRow::constraints },
    { "openQuestions", "Open questions", &DevSRSRow::openQuestions },
} };

}

DevSRS::DevSRS(DevDesk& desk, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
{
}

void DevSRS::reload()
{
    DevSRSRow none;
    none.projectId = m_desk.project.id;
    const DevSRSRow now = m_desk.hasProject() ? fetchDevSRS(m_desk.work.db, none.projectId).value_or(none) : none;
    if (now.projectId == m_seen.projectId && dirty()) {
        m_overtaken = m_overtaken || now != m_seen;
        return Q_EMIT changed();
    }
    show(now);
}

void DevSRS::show(const DevSRSRow& row)
{
    m_seen = row;
    m_edited = row;
    m_overtaken = false;
    m_error.clear();
    Q_EMIT changed();
}

QList<DevSRSSection> DevSRS::sections() const
{
    QList<DevSRSSection> sections;
    for (const Field& field : fields) {
        DevSRSSection section;
        section.id = QLatin1StringView(field.id);
        section.label = QLatin1StringView(field.label);
        section.text = m_edited.*field.member;
        const bool isQuestion = field.member == &DevSRSRow::openQuestions;
        section.shown = !section.text.trimmed().isEmpty() ? shownText(section.text)
            : isQuestion                                  ? u"No open questions recorded."_s
                                                          : u"Not defined yet."_s;
        sections.append(section);
    }
    return sections;
}

QString DevSRS::emptyText() const
{
    return m_desk.hasProject() ? u"No SRS exists for this project yet."_s : u"No project selected"_s;
}

QString DevSRS::facts() const
{
    const QString when = shownTime(m_seen.updatedAt, DateWords(m_desk.work.db.nowMs()));
    return when.isEmpty() ? QString() : u"Changed "_s + when;
}

void DevSRS::seed()
{
    const auto row = m_desk.hasProject() ? seedDevSRS(m_desk.work.db, m_desk.project) : std::nullopt;
    if (row)
        return show(*row);
    m_error = u"Could not save SRS."_s;
    Q_EMIT changed();
}

void DevSRS::edit(const QString& section, const QString& text)
{
    for (const Field& field : fields) {
        if (section == QLatin1StringView(field.id) && m_edited.*field.member != text) {
            m_edited.*field.member = text;
            Q_EMIT changed();
        }
    }
}

void DevSRS::save()
{
    if (!dirty())
        return;
    if (m_overtaken) {
        DevSRSRow none;
        none.projectId = m_seen.projectId;
        m_seen = fetchDevSRS(m_desk.work.db, none.projectId).value_or(none);
    }
    const DevSRSSaved saved = saveDevSRS(m_desk.work.db, m_seen, m_edited);
    if (saved == DevSRSSaved::Saved) {
        m_edited = m_seen;
        return reload();
    }
    m_overtaken = saved == DevSRSSaved::Changed;
    m_error = m_overtaken ? QString() : u"Could not save SRS."_s;
    Q_EMIT changed();
}

void DevSRS::revert()
{
    m_edited = m_seen;
    reload();
}

}
