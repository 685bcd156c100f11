#pragma once

#include "Presentation/RowListModel.h"
#include "Work/WorkRows.h"

namespace corvane {

class LocalDB;

/// The sidebar of a module: its places, and the contexts that match the query. Either a place or a context is selected.
class WorkRail : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* contexts READ contexts CONSTANT)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(QString contextsTitle READ contextsTitle CONSTANT)
    Q_PROPERTY(QString contextsEmpty READ contextsEmpty NOTIFY changed) ///< empty if there are contexts
    Q_PROPERTY(QString createLabel READ createLabel CONSTANT)
    Q_PROPERTY(QList<corvane::TabItem> places READ places NOTIFY changed)
    Q_PROPERTY(QString place READ place WRITE setPlace NOTIFY changed) ///< empty while a context is selected
    Q_PROPERTY(QString selectedContextId READ selectedContextId NOTIFY changed)
public:
    /// `places` are the entries that are not contexts. The references must outlive the rail.
    WorkRail(LocalDB& db, const WorkConsoleConfig& config, const QList<TabItem>& places, QObject* parent);

    void read(); ///< the caller emits `changed` after showing the selection
    const WorkContext& context() const { return m_context; } ///< the selected one
    const QList<WorkContextRow>& everyContext() const { return m_everyContext; } ///< regardless of the query
    void setPlaceCount(const QString& place, int count);

    GadgetListModel* contexts() { return &m_contexts; }
    const QList<WorkContextSeed>& contextRows() const { return m_contexts.rows(); }
    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    QString contextsTitle() const { return m_config.contextTitle; }
    QString contextsEmpty() const;
    QString createLabel() const { return u"New "_s + m_config.contextNoun; }
    const QList<TabItem>& places() const { return m_places; }
    const QString& place() const { return m_place; }
    void setPlace(const QString& place);
    QString selectedContextId() const { return m_context ? m_context->id : QString(); }

    Q_INVOKABLE void select(const QString& contextId);
    Q_INVOKABLE void step(int by); ///< selects the context this many rows away

Q_SIGNALS:
    void changed();
    void selected(); ///< another place or context was selected; the receiver emits `changed`

private:
    LocalDB& m_db;
    const WorkConsoleConfig m_config;
    QList<TabItem> m_places;
    QString m_place;
    QString m_query;
    WorkContext m_context;
    QList<WorkContextRow> m_everyContext;
    RowListModel<WorkContextSeed> m_contexts;
};

}
