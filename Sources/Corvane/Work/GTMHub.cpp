#include "Work/GTMHub.h"

#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/People/CrmRecords.h"

#include <QLocale>
#include <QMap>
#include <algorithm>

namespace corvane {

namespace {

const QString gtm = u"gtm"_s;
constexpr int dealsShown = 500;
constexpr int itemsShown = 50;
constexpr qint64 dayMs = 24LL * 3600 * 1000;
constexpr qint64 coldAfterDays = 14;

bool isWon(const QString& stage)
{
    return stage == "Closed Won"_L1;
}

bool isClosed(const QString& stage)
{
    return isWon(stage) || stage == "Closed Lost"_L1;
}

/// The values by currency sign: different currencies are never added up.
class Sum {
public:
    void add(const QString& value)
    {
        QString sign;
        for (const QChar letter : value) {
            if (letter.category() == QChar::Symbol_Currency)
                sign = letter;
        }
        if (const qint64 worth = dealValue(value); worth > 0)
            m_parts[sign] += worth;
    }

    QString words() const
    {
        QStringList shown;
        for (auto part = m_parts.cbegin(); part != m_parts.cend(); ++part)
            shown.append(part.key() + QLocale(QLocale::English).toString(part.value()));
        return shown.join(u" + "_s);
    }

private:
    QMap<QString, qint64> m_parts;
};

}

DealSeed dealSeed(const DealLensRow& deal, bool open, const DateWords& words, qint64 nowMs)
{
    DealSeed seed;
    seed.id = deal.id;
    seed.name = shownLine(deal.name);
    seed.person = factLine({ shownLine(deal.contactName), shownLine(deal.company) });
    seed.value = shownLine(deal.value);
    seed.touched = deal.touchedAt > 0 ? u"last message "_s + words.ago(deal.touchedAt) : u"no message yet"_s;
    seed.cold = open && nowMs - deal.touchedAt > coldAfterDays * dayMs;
    seed.contactId = deal.contactId;
    seed.aloud = QStringList { seed.name, seed.person, seed.value, seed.touched }.join(u", "_s);
    return seed;
}

QString PipelineStage::title() const
{
    return m_stage.isEmpty() ? u"Unstaged"_s : shownLine(m_stage);
}

void PipelineStage::show(const QString& stage, const QString& sum, const QList<DealSeed>& deals)
{
    const bool same = m_stage == stage && m_sum == sum && count() == deals.size();
    m_stage = stage;
    m_sum = sum;
    m_deals.assign(deals);
    if (!same)
        Q_EMIT changed();
}

GTMHub::GTMHub(const WorkServices& services, QObject* parent)
    : QObject(parent)
    , m_at(services)
    , m_shell(services, WorkConsoleConfig::gtm(), { { u"pipeline"_s, u"Pipeline"_s } }, this)
    , m_undo(services.scheduler, [this] { Q_EMIT changed(); })
{
    connect(&m_shell, &WorkModuleShell::refreshed, this, &GTMHub::readPlaces);
    connect(&m_shell, &WorkModuleShell::aged, this, &GTMHub::readPlaces);
    m_at.db.watch().on(StoreSubject::Messages, this, [this] { m_shell.setStale(); });
}

void GTMHub::readPlaces()
{
    if (m_shell.rail()->place().isEmpty())
        return;
    const qint64 now = m_at.db.nowMs();
    const DateWords words(now);
    QStringList stages = pipelineStages();
    QHash<QString, QList<DealSeed>> deals;
    QHash<QString, Sum> sums;
    m_deals = 0;
    int cold = 0;
    Sum openValue;
    Sum wonValue;
    for (const DealLensRow& row : fetchDealLens(m_at.db, dealsShown)) {
        if (!stages.contains(row.stage))
            stages.append(row.stage);
        const bool open = !isClosed(row.stage);
        const DealSeed seed = dealSeed(row, open, words, now);
        deals[row.stage].append(seed);
        sums[row.stage].add(row.value);
        if (open || isWon(row.stage))
            (open ? openValue : wonValue).add(row.value);
        cold += seed.cold ? 1 : 0;
        ++m_deals;
    }
    for (int at = 0; at < int(stages.size()); ++at) {
        if (at == int(m_stages.size()))
            m_stages.append(new PipelineStage(this));
        const QString stage = stages.at(at);
        m_stages.at(at)->show(stage, sums.value(stage).words(), deals.value(stage));
    }
    if (std::exchange(m_stageCount, int(stages.size())) != stages.size())
        Q_EMIT stagesChanged();

    const WorkCounts counts = countWork(m_at.db, gtm, {});
    const auto metric = [](const QString& label, const QString& value) {
        WorkMetricSeed seed;
        seed.label = label;
        seed.value = value.isEmpty() ? u"0"_s : value;
        return seed;
    };
    m_metrics = { metric(u"In the pipeline"_s, openValue.words()), metric(u"Won"_s, wonValue.words()),
        metric(u"Gone quiet"_s, QString::number(cold)), metric(u"Open work"_s, QString::number(counts.openItems)) };
    QList<WorkItemSeed> items;
    const QStringList waiting = titlesOfWaitingDecisions(m_at.db, gtm, {});
    for (const WorkItemRecord& item :
        fetchWorkItems(m_at.db, { .module = gtm, .context = {} }, WorkItems::Open, itemsShown))
        items.append(itemSeed(item, waiting.contains(u"Review "_s + item.title), words));
    m_items.assign(items);
    Q_EMIT changed();
}

PipelineStage* GTMHub::stage(int index) const
{
    return m_stages.value(index);
}

int GTMHub::stageOf(const QString& id) const
{
    for (int at = 0; at < m_stageCount; ++at) {
        if (std::ranges::find(m_stages.at(at)->rows(), id, &DealSeed::id) != m_stages.at(at)->rows().end())
            return at;
    }
    return -1;
}

void GTMHub::moveDeal(const QString& id, int stage)
{
    const int before = stageOf(id);
    if (before < 0 || stage < 0 || stage >= m_stageCount || before == stage)
        return;
    const QString from = m_stages.at(before)->stage();
    const QString to = m_stages.at(stage)->stage();
    const QString title = m_stages.at(stage)->title();
    const QList<DealSeed> rows = m_stages.at(before)->rows();
    const QString name = std::ranges::find(rows, id, &DealSeed::id)->name;
    if (!write(id, to))
        return;
    m_undo.offer(u"Moved to %1: %2"_s.arg(title, name), [this, id, from, to] {
        // A newer move must not be undone.
        if (const int now = stageOf(id); now >= 0 && m_stages.at(now)->stage() == to)
            write(id, from);
    });
}

bool GTMHub::write(const QString& id, const QString& stage)
{
    const bool written = moveCRMDeal(m_at.db, id, stage);
    m_error = written ? QString() : u"It could not be moved: the change was not saved."_s;
    m_shell.refresh();
    return written;
}

void GTMHub::moveDealBy(const QString& id, int stages)
{
    if (const int at = stageOf(id); at >= 0)
        moveDeal(id, std::clamp(at + stages, 0, m_stageCount - 1));
}

void GTMHub::openPerson(const QString& contactId)
{
    if (!contactId.isEmpty())
        m_at.notifications.post(notifications::openConversation, contactId);
}

QString GTMHub::emptyTitle() const
{
    return m_deals == 0 ? u"No deals yet"_s : QString();
}

QString GTMHub::emptyText() const
{
    return u"To add a deal, open a conversation and use the pane beside it."_s;
}

}
