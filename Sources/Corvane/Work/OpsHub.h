#pragma once

#include "Foundation/Literals.h"
#include "Work/OpsProjects.h"
#include "Work/WorkModuleShell.h"

namespace corvane {

/// The finance screen: work about money, and the approval before it moves.
class OpsFinance : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* items READ items CONSTANT)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(QString searchText READ searchText CONSTANT)
    Q_PROPERTY(QList<corvane::WorkMetricSeed> metrics READ metrics NOTIFY changed)
    Q_PROPERTY(QString gateLabel READ gateLabel CONSTANT)
    Q_PROPERTY(QString gateHint READ gateHint CONSTANT)
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
public:
    OpsFinance(const WorkServices& services, QObject* parent);

    void reload();

    GadgetListModel* items() { return &m_items; }
    const QList<WorkItemSeed>& rows() const { return m_items.rows(); }
    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    QString searchText() const { return u"Search finance work"_s; }
    const QList<WorkMetricSeed>& metrics() const { return m_metrics; }
    QString gateLabel() const { return u"Approval"_s; }
    QString gateHint() const { return u"Propose a decision for a finance action"_s; }
    const QString& notice() const { return m_notice; }
    QString emptyText() const;

    Q_INVOKABLE void gate(); ///< only records that a decision is needed
    Q_INVOKABLE void dismissNotice();

Q_SIGNALS:
    void changed();
    void wrote();

private:
    const WorkServices m_at;
    QString m_query;
    QString m_notice;
    QList<WorkMetricSeed> m_metrics;
    RowListModel<WorkItemSeed> m_items;
};

/// The operations hub: today's work, open questions, projects, finance, and the processes.
class OpsHub : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WorkModuleShell* shell READ shell CONSTANT)
    Q_PROPERTY(corvane::OpsAsks* asks READ asks CONSTANT)
    Q_PROPERTY(corvane::OpsProjects* projects READ projects CONSTANT)
    Q_PROPERTY(corvane::OpsFinance* finance READ finance CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* latest READ latest CONSTANT)
    Q_PROPERTY(QString activeText READ activeText NOTIFY changed)
public:
    explicit OpsHub(const WorkServices& services, QObject* parent = nullptr);

    WorkModuleShell* shell() { return &m_shell; }
    OpsAsks* asks() { return &m_asks; }
    OpsProjects* projects() { return &m_projects; }
    OpsFinance* finance() { return &m_finance; }
    GadgetListModel* latest() { return &m_latest; }
    QString activeText() const;
    int urgent() const { return m_urgent; } ///< open questions of urgency "high"

    void showAsk(const QString& id);
    void showProject(const QString& id);

Q_SIGNALS:
    void changed();

private:
    void readPlaces();
    void countUrgent();

    const WorkServices m_at;
    WorkModuleShell m_shell;
    OpsAsks m_asks;
    OpsProjects m_projects;
    OpsFinance m_finance;
    int m_active = 0;
    int m_urgent = 0;
    RowListModel<OpsTimelineEvent> m_latest;
};

}
