#pragma once

#include "Presentation/RowListModel.h"
#include "Work/WorkConsoleConfig.h"
#include "Work/WorkRows.h"

namespace corvane {

class LocalDB;

/// Evidence in a list.
class WorkEvidenceSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString summary MEMBER summary)
    Q_PROPERTY(QString facts MEMBER facts)
public:
    QString id;
    QString title;
    QString summary;
    QString facts; ///< its kind, source and time

    static constexpr const char* role = "evidence";
    const QString& key() const { return id; }
    bool operator==(const WorkEvidenceSeed&) const = default;
};

WorkEvidenceSeed evidenceSeed(const WorkEvidenceRecord& evidence, const DateWords& words);

/// The evidence and the timeline of a context, or of a whole module.
class WorkHistory : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* evidence READ evidence CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* timeline READ timeline CONSTANT)
    Q_PROPERTY(QString earlierText READ earlierText NOTIFY changed) ///< empty if the whole timeline is shown
public:
    WorkHistory(LocalDB& db, const QString& module, QObject* parent); ///< `db` outlives it

    void setContext(const WorkContextId& context); ///< its timeline starts with the newest page
    void readEvidence();
    void readTimeline();

    GadgetListModel* evidence() { return &m_evidence; }
    GadgetListModel* timeline() { return &m_timeline; }
    const QList<OpsTimelineEvent>& timelineRows() const { return m_timeline.rows(); }
    QString earlierText() const { return m_hasEarlier ? u"Show earlier"_s : QString(); }

    Q_INVOKABLE void showEarlier(); ///< of the timeline

Q_SIGNALS:
    void changed();

private:
    LocalDB& m_db;
    const QString m_module;
    WorkContextId m_context;
    int m_eventsShown;
    bool m_hasEarlier = false;
    RowListModel<WorkEvidenceSeed> m_evidence;
    RowListModel<OpsTimelineEvent> m_timeline;
};

}
