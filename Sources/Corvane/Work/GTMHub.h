#pragma once

#include "Store/Work/LensQueries.h"
#include "Work/WorkModuleShell.h"

namespace corvane {

/// A deal in its stage.
class DealSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString person MEMBER person)
    Q_PROPERTY(QString value MEMBER value)
    Q_PROPERTY(QString touched MEMBER touched)
    Q_PROPERTY(bool cold MEMBER cold)
    Q_PROPERTY(QString contactId MEMBER contactId)
    Q_PROPERTY(QString aloud MEMBER aloud)
public:
    QString id;
    QString name;
    QString person; ///< with the company
    QString value;
    QString touched; ///< "3 days since the last message"
    bool cold = false; ///< no contact for two weeks or more
    QString contactId;
    QString aloud;

    static constexpr const char* role = "deal";
    const QString& key() const { return id; }
    bool operator==(const DealSeed&) const = default;
};

DealSeed dealSeed(const DealLensRow& deal, bool open, const DateWords& words, qint64 nowMs);

/// A stage of the pipeline: its deals and their total value.
class PipelineStage : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString sum READ sum NOTIFY changed)
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(corvane::GadgetListModel* deals READ deals CONSTANT)
public:
    using QObject::QObject;

    const QString& stage() const { return m_stage; } ///< as stored; empty for deals without one
    QString title() const;
    const QString& sum() const { return m_sum; }
    int count() const { return int(m_deals.rows().size()); }
    GadgetListModel* deals() { return &m_deals; }
    const QList<DealSeed>& rows() const { return m_deals.rows(); }

    void show(const QString& stage, const QString& sum, const QList<DealSeed>& deals);

Q_SIGNALS:
    void changed();

private:
    QString m_stage;
    QString m_sum;
    RowListModel<DealSeed> m_deals;
};

/// Go-to-market: the pipeline of deals, and the campaigns.
class GTMHub : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WorkModuleShell* shell READ shell CONSTANT)
    Q_PROPERTY(int stageCount READ stageCount NOTIFY stagesChanged)
    Q_PROPERTY(QList<corvane::WorkMetricSeed> metrics READ metrics NOTIFY changed)
    Q_PROPERTY(QString undoText READ undoText NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* items READ items CONSTANT) ///< the module's open work
public:
    explicit GTMHub(const WorkServices& services, QObject* parent = nullptr);

    WorkModuleShell* shell() { return &m_shell; }
    int stageCount() const { return m_stageCount; }
    Q_INVOKABLE corvane::PipelineStage* stage(int index) const;
    const QList<WorkMetricSeed>& metrics() const { return m_metrics; }
    const QString& undoText() const { return m_undo.text(); }
    const QString& error() const { return m_error; }
    QString emptyTitle() const;
    QString emptyText() const;
    GadgetListModel* items() { return &m_items; }

    Q_INVOKABLE void moveDeal(const QString& id, int stage);
    Q_INVOKABLE void moveDealBy(const QString& id, int stages);
    Q_INVOKABLE void openPerson(const QString& contactId);
    Q_INVOKABLE void undo() { m_undo.take(); }
    Q_INVOKABLE void dismissUndo() { m_undo.dismiss(); }

Q_SIGNALS:
    void changed();
    void stagesChanged();

private:
    void readPlaces();
    int stageOf(const QString& id) const;
    bool write(const QString& id, const QString& stage);

    const WorkServices m_at;
    WorkModuleShell m_shell;
    QList<PipelineStage*> m_stages; ///< children
    int m_stageCount = 0;
    int m_deals = 0;
    QList<WorkMetricSeed> m_metrics;
    QString m_error;
    UndoOffer m_undo;
    RowListModel<WorkItemSeed> m_items;
};

}
