#include "Desk/ResourcesView.h"

#include "Desk/ResourceMonitor.h"
#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

namespace {

QString idOf(const ResourceProcessRow& row)
{
    return u"%1:%2"_s.arg(row.pid).arg(row.startTime);
}

ProcessItem itemOf(const ResourceProcessRow& row)
{
    return { idOf(row), row.name(), u"%1 · %2"_s.arg(row.role()).arg(row.pid), row.memoryLabel(), !row.isProtected };
}

QString percent(double number)
{
    return QString::number(number, 'f', 0) + u'%';
}

}

ResourcesView::ResourcesView(QObject* parent)
    : QObject(parent)
{
}

void ResourcesView::setMonitor(ResourceMonitor& monitor)
{
    m_monitor = &monitor;
    connect(&monitor, &ResourceMonitor::changed, this, &ResourcesView::follow);
}

void ResourcesView::setShown(bool shown)
{
    if (m_shown == shown)
        return;
    m_shown = shown;
    m_asking.clear();
    m_notice.clear();
    follow();
    if (m_shown && m_monitor)
        m_monitor->refresh();
}

void ResourcesView::follow()
{
    if (!m_shown || !m_monitor)
        return;
    m_snapshot = m_monitor->snapshot();
    QList<ProcessItem> items;
    for (const ResourceProcessRow& row : std::as_const(m_snapshot.topProcesses))
        items.append(itemOf(row));
    m_rows.assign(items);
    if (!find(m_asking))
        m_asking.clear();
    Q_EMIT changed();
}

QString ResourcesView::memoryText() const
{
    if (m_snapshot.physicalMemoryBytes == 0)
        return {};
    const QString all = u"%1 of memory"_s.arg(formatBytes(m_snapshot.physicalMemoryBytes));
    return m_snapshot.compressorBytes == 0
        ? all
        : all + u" · %1 kept compressed"_s.arg(formatBytes(m_snapshot.compressorBytes));
}

QString ResourcesView::countsText() const
{
    return m_snapshot.updatedAtMs == 0 ? QString()
                                       : u"%1 Claude · %2 Codex · %3 Node"_s.arg(m_snapshot.localClaudeCount)
                                             .arg(m_snapshot.codexCount)
                                             .arg(m_snapshot.nodeCount);
}

QString ResourcesView::warningTitle() const
{
    if (!isShort(m_snapshot))
        return {};
    return m_snapshot.pressure
        ? u"RAM pressure high · programs waited %1 of the time"_s.arg(percent(*m_snapshot.pressure))
        : u"RAM pressure high · compressor %1"_s.arg(m_snapshot.compressorPages);
}

QString ResourcesView::warningText() const
{
    if (!isShort(m_snapshot))
        return {};
    return m_snapshot.pressure ? u"Builds should wait until it drops below 10%."_s
                               : u"Builds should wait until compressor drops below 800k pages."_s;
}

QString ResourcesView::emptyText() const
{
    if (m_snapshot.updatedAtMs != 0)
        return {};
    const QString error = m_monitor ? m_monitor->lastError() : QString();
    return error.isEmpty() ? u"The processes are being read."_s : error;
}

QString ResourcesView::questionText() const
{
    const auto* row = find(m_asking);
    return row ? u"%1 (%2) uses %3. Use this only for apps you recognize."_s.arg(row->name())
                     .arg(row->pid)
                     .arg(row->memoryLabel())
               : QString();
}

void ResourcesView::ask(const QString& id)
{
    const auto* row = find(id);
    if (!row || row->isProtected)
        return;
    m_asking = id;
    m_notice.clear();
    Q_EMIT changed();
}

void ResourcesView::terminate()
{
    const auto* row = find(m_asking);
    if (!row || !m_monitor)
        return;
    m_asking.clear();
    if (!m_monitor->terminate(*row)) {
        m_notice = u"%1 couldn't be ended. It may have ended by itself."_s.arg(row->name());
        m_monitor->refresh();
    }
    Q_EMIT changed();
}

bool ResourcesView::stepBack()
{
    if (m_asking.isEmpty())
        return false;
    m_asking.clear();
    Q_EMIT changed();
    return true;
}

const ResourceProcessRow* ResourcesView::find(const QString& id) const
{
    const auto found = std::ranges::find(m_snapshot.topProcesses, id, idOf);
    return found == m_snapshot.topProcesses.end() ? nullptr : &*found;
}

}
