#include "Dev/DevMemory.h"

#include "Foundation/Literals.h"
#include "Store/Work/WorkWrites.h"
#include "Terminals/LumoTerminalSession.h"

namespace corvane {

namespace {

constexpr int memoryCharacters = 6000;

}

DevMemory::DevMemory(DevDesk& desk, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
    , m_rows(desk.work.db, desk.work.scheduler, this)
{
    connect(&m_rows, &WorkDecisions::wrote, this, &DevMemory::wrote);
}

void DevMemory::reload()
{
    m_rows.setScope(devModule, m_desk.place());
    m_rows.reload();
    Q_EMIT changed();
}

void DevMemory::setMemoryDraft(const QString& draft)
{
    if (std::exchange(m_draft, draft) != draft)
        Q_EMIT changed();
}

void DevMemory::setMemoryDraftKind(const QString& kind)
{
    if (std::exchange(m_kind, kind) != kind)
        Q_EMIT changed();
}

QList<Choice> DevMemory::templates() const
{
    return { { u"fact"_s, u"Fact"_s }, { u"command"_s, u"Useful command"_s }, { u"lesson"_s, u"Lesson"_s } };
}

QString DevMemory::emptyText() const
{
    return u"Facts, commands and lessons appear here when you or an agent propose them. Agents may use what you approve."_s;
}

void DevMemory::stageMemoryDraft(const QString& kind)
{
    const QString name = m_desk.hasProject() ? m_desk.projectName() : m_desk.console.area;
    m_kind = kind;
    if (kind == "command"_L1)
        m_draft = u"Useful command for %1\ncommand:\nwhen to use:\nexpected output:"_s.arg(name);
    else if (kind == "lesson"_L1)
        m_draft = name + u" lesson:\n- What went wrong:\n- How to detect it:\n- Correct fix:\n- Evidence:"_s;
    else
        m_draft = name + u" fact:\n- Fact:\n- Evidence:\n- Applies to:"_s;
    tell({}, false);
}

bool DevMemory::propose(const QString& kind, const QString& body, const QString& source)
{
    const bool saved = insertWorkMemory(m_desk.work.db,
        { .module = devModule,
            .context = m_desk.madeContext(),
            .kind = kind,
            .body = body,
            .source = source,
            .confidence = u"medium"_s,
            .owner = u"Oskel"_s })
                           .has_value();
    tell(saved ? u"It waits for your approval, under Memory."_s : u"Could not save the entry."_s, !saved);
    if (saved) {
        m_desk.told();
        reload();
        Q_EMIT wrote();
    }
    return saved;
}

void DevMemory::tell(const QString& notice, bool failed)
{
    m_notice = notice;
    m_failed = failed;
    Q_EMIT changed();
}

void DevMemory::proposeMemory()
{
    const QString body = m_draft.trimmed();
    if (!body.isEmpty() && propose(m_kind, body, m_desk.console.area + u" Memory"_s))
        setMemoryDraft({});
}

void DevMemory::saveTerminalTranscriptMemory()
{
    const QString text = m_desk.transcript(memoryCharacters);
    if (!text.isEmpty()) {
        propose(u"fact"_s, text, m_desk.console.area + u" Terminal"_s);
        return;
    }
    tell(m_desk.session() ? u"The terminal shows nothing yet."_s : u"No terminal of this project is open."_s, true);
}

}
