#include "Dev/DevTasks.h"

#include "Browser/BrowserView.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Presentation/DateWords.h"
#include "Store/Core/LocalDB.h"
#include "Store/Work/WorkWrites.h"
#include "Terminals/LumoTerminalSession.h"
#include "Work/WorkLanes.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int itemCharacters = 3200;
constexpr int titleCharacters = 100;
constexpr int openShown = 30;
const QString nothingShown = u"The terminal shows nothing yet."_s;
const QString notSaved = u"Could not save the item."_s;

const WorkLanes& lanes()
{
    static const WorkLanes lanes { .names = { u"Open"_s, u"Review"_s, u"Waiting"_s, u"Done"_s } };
    return lanes;
}

}

QString terminalIssueTitle(const QString& transcript)
{
    static const QStringList signs { u"error"_s, u"failed"_s, u"failure"_s, u"fatal"_s, u"exception"_s, u"panic"_s,
        u"traceback"_s, u"cannot"_s, u"not found"_s, u"denied"_s };
    QString last;
    QString trouble;
    for (const QString& line : transcript.split(u'\n')) {
        const QString text = singleLine(line);
        if (text.isEmpty())
            continue;
        last = text;
        if (std::ranges::any_of(signs, [&](const QString& sign) { return text.contains(sign, Qt::CaseInsensitive); }))
            trouble = text;
    }
    return u"Terminal issue: "_s + firstCharacters(trouble.isEmpty() ? last : trouble, titleCharacters);
}

DevTasks::DevTasks(DevDesk& desk, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
    , m_board(desk.work.db, desk.work.scheduler, this)
    , m_item(desk.work.db, this)
{
    m_board.setEmptyWords(u"No tasks yet"_s,
        u"Tasks and bugs appear when you create one, here or from a terminal, or when an agent does."_s);
    m_item.setLanes(lanes());
    connect(&m_board, &WorkBoard::wrote, this, &DevTasks::wrote);
    connect(&m_item, &WorkItemSheet::wrote, this, &DevTasks::wrote);
    showProject();
}

void DevTasks::showProject()
{
    m_item.close();
    m_board.dismissUndo();
    m_notice.clear();
    m_board.setScope({ .module = devModule, .context = m_desk.shownContext() }, lanes());
    m_scope = m_desk.shownContext();
}

void DevTasks::reload()
{
    if (m_scope != m_desk.shownContext())
        showProject();
    m_item.reload();
    const DateWords words(m_desk.work.db.nowMs());
    QList<WorkItemSeed> open;
    for (const WorkItemRecord& row :
        fetchWorkItems(m_desk.work.db, { .module = devModule, .context = m_scope }, WorkItems::Open, openShown))
        open.append(itemSeed(row, false, words));
    m_open.assign(open);
    Q_EMIT changed();
}

void DevTasks::reloadBoard()
{
    m_board.reload();
}

void DevTasks::createQuickTask()
{
    createQuick(u"task"_s, u"Define next development task"_s);
}

void DevTasks::createQuickBug()
{
    createQuick(u"bug"_s, u"Investigate reported bug"_s);
}

void DevTasks::createQuick(const QString& kind, const QString& title)
{
    if (!m_desk.hasProject())
        return tell(u"No project selected"_s, true);
    const auto saved = insertWorkItem(m_desk.work.db,
        { .module = devModule,
            .context = m_desk.madeContext(),
            .kind = kind,
            .title = title,
            .priority = u"normal"_s,
            .owner = u"Oskel"_s,
            .source = u"planning"_s,
            .summary = u"Created from %1 task board."_s.arg(m_desk.console.area) });
    if (!saved)
        return tell(notSaved, true);
    tell({}, false);
    m_item.open(saved->id);
}

void DevTasks::taskFromTerminal()
{
    createTerminalWorkItem(u"task"_s, u"normal"_s, m_desk.console.area + u" Terminal"_s);
}

void DevTasks::bugFromTerminal()
{
    createTerminalWorkItem(u"bug"_s, u"high"_s, m_desk.console.area + u" Terminal"_s);
}

bool DevTasks::createTerminalWorkItem(const QString& kind, const QString& priority, const QString& label)
{
    LumoTerminalSession* const session = m_desk.session();
    if (!m_desk.hasProject() || !session) {
        tell(m_desk.hasProject() ? u"No terminal of this project is open."_s : u"No project selected"_s, true);
        return false;
    }
    const QString text = m_desk.transcript(itemCharacters);
    if (text.isEmpty()) {
        tell(nothingShown, true);
        return false;
    }
    const bool isBug = kind == "bug"_L1;
    const auto item = insertWorkItem(m_desk.work.db,
        { .module = devModule,
            .context = m_desk.madeContext(),
            .kind = kind,
            .title = isBug ? terminalIssueTitle(text) : u"Follow up terminal output from "_s + session->title(),
            .priority = priority,
            .owner = isBug ? u"unassigned"_s : u"Oskel"_s,
            .source = u"terminal"_s,
            .summary = text });
    if (!item) {
        tell(notSaved, true);
        return false;
    }
    const auto evidence = insertWorkEvidence(m_desk.work.db,
        { .module = devModule,
            .context = m_desk.madeContext(),
            .itemId = item->id,
            .kind = u"terminal-transcript"_s,
            .title = u"Terminal evidence from "_s + session->title(),
            .source = label,
            .uri = {},
            .summary = text });
    tell(evidence ? u"“%1” is on the board, with what the terminal showed."_s.arg(item->title)
                  : u"The item is on the board. Could not save the note."_s,
        !evidence);
    return true;
}

void DevTasks::proposeDevDecision()
{
    if (!m_desk.hasProject())
        return tell(u"No project selected"_s, true);
    const auto saved = insertWorkDecision(m_desk.work.db,
        { .module = devModule,
            .context = m_desk.madeContext(),
            .title = u"Review project decision"_s,
            .proposal = u"Decide how %1 goes on."_s.arg(m_desk.projectName()),
            .rationale = u"Created from %1 task board."_s.arg(m_desk.console.area),
            .risk = {} });
    tell(saved ? u"A decision waits in Approvals."_s : u"Could not save the decision."_s, !saved);
}

void DevTasks::tell(const QString& notice, bool failed)
{
    m_notice = notice;
    m_failed = failed;
    if (!failed) {
        m_desk.told();
        Q_EMIT wrote();
    }
    Q_EMIT changed();
}

void DevTasks::openReport(const QString& capture)
{
    refuse(m_desk.browser.history()->openReport(capture));
}

void DevTasks::playSteps(const QString& capture)
{
    refuse(m_desk.browser.history()->playSteps(capture));
}

void DevTasks::refuse(const Result<void>& done)
{
    done ? dismissNotice() : tell(done.error().message, true);
}

void DevTasks::dismissNotice()
{
    m_notice.clear();
    m_failed = false;
    Q_EMIT changed();
}

}
