#pragma once

#include "Store/Work/WorkBoardQueries.h"
#include "Work/WorkConsoleConfig.h"
#include "Work/WorkRows.h"

namespace corvane {

/// The head of a context, or of the workspace while none is selected: its title and figures, and what can be started.
class WorkHeader : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY changed)
    Q_PROPERTY(QList<corvane::WorkAction> topActions READ topActions NOTIFY changed)
    Q_PROPERTY(QList<corvane::WorkAction> quickActions READ quickActions NOTIFY changed)
    Q_PROPERTY(QList<corvane::WorkMetricSeed> metrics READ metrics NOTIFY changed)
public:
    WorkHeader(LocalDB& db, const WorkConsoleConfig& config, QObject* parent); ///< `db` outlives it

    void read(const WorkContext& context); ///< the caller emits `changed`
    const WorkCounts& counts() const { return m_counts; }
    QString title() const;
    QString subtitle() const;
    QList<WorkAction> topActions() const { return contextualTopActions(m_config, m_context); }
    QList<WorkAction> quickActions() const { return contextualQuickActions(m_config, m_context); }
    QList<WorkMetricSeed> metrics() const { return dashboardMetrics(m_config, m_counts); }

Q_SIGNALS:
    void changed();

private:
    LocalDB& m_db;
    const WorkConsoleConfig m_config;
    WorkContext m_context;
    WorkCounts m_counts;
};

}
