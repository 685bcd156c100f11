#include "Care/Doctor/DoctorView.h"

#include "Foundation/BackgroundQueue.h"

#include <QPointer>
#include <algorithm>
#include <mutex>

namespace corvane {

namespace {

constexpr Milliseconds tick { 200 };

QList<Finding> worstFirst(const QList<Finding>& findings)
{
    QList<Finding> sorted;
    for (const Health health : { Health::Failure, Health::Warning, Health::Good })
        std::ranges::copy_if(findings, std::back_inserter(sorted),
            [health](const Finding& finding) { return finding.health == health; });
    return sorted;
}

}

/// Shared with the checking thread.
struct DoctorView::Run {
    void begin(const QString& what)
    {
        const std::lock_guard lock(mutex);
        title = what;
    }
    QString current()
    {
        const std::lock_guard lock(mutex);
        return title;
    }

    std::atomic<bool> stopped = false;
    std::mutex mutex;
    QString title;
};

DoctorView::DoctorView(Surroundings surroundings, QObject* parent)
    : QObject(parent)
    , m_at(std::move(surroundings))
{
}

DoctorView::~DoctorView()
{
    cancel();
}

QString DoctorView::hint() const
{
    if (m_run)
        return u"Checking: %1…"_s.arg(m_run->current());
    if (m_findings.isEmpty())
        return u"Checks the database, the disk, engines, mail servers and the desktop. It changes nothing."_s;
    const auto count
        = std::ranges::count_if(m_findings, [](const Finding& finding) { return finding.health != Health::Good; });
    if (count == 0)
        return u"Everything is in order."_s;
    return count == 1 ? u"One check needs attention."_s : u"%1 checks need attention."_s.arg(count);
}

bool DoctorView::canFix() const
{
    return !busy() && std::ranges::any_of(m_findings, &Finding::canFix);
}

void DoctorView::check()
{
    m_fixed.clear();
    start(false);
}

void DoctorView::fix()
{
    start(true);
}

void DoctorView::start(bool mends)
{
    if (m_run)
        return;
    m_run = std::make_shared<Run>();
    m_ticks = m_at.scheduler.every(tick, [this] { Q_EMIT changed(); });
    m_at.background.run<Outcome>(
        [profile = m_at.profile(), run = m_run, findings = mends ? m_findings : QList<Finding>()] {
            const QStringList fixed = fixFindings(profile, findings);
            const CheckProgress progress { [run](const QString& title) { run->begin(title); }, &run->stopped };
            return Outcome { fixed, worstFirst(runChecks(profile, progress)) };
        },
        [self = QPointer(this)](const Outcome& outcome) {
            if (!self)
                return;
            const bool wasStopped = self->m_run->stopped;
            self->m_run.reset();
            self->m_ticks.reset();
            self->m_fixed = outcome.fixed;
            if (!wasStopped)
                self->m_findings = outcome.findings;
            Q_EMIT self->changed();
        });
    Q_EMIT changed();
}

void DoctorView::cancel()
{
    if (m_run)
        m_run->stopped = true;
}

}
