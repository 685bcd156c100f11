#pragma once

#include "Foundation/Coalescer.h"
#include "Inbox/List/ContactItem.h"
#include "Presentation/RowListModel.h"
#include "Store/Messages/MessageSearch.h"

namespace corvane {

/// The messages that contain what is searched for. The search may take seconds: what was found before stands
/// until the new rows are there, for as long as nobody sees a wait.
class MessageHits : public QObject {
    Q_OBJECT
public:
    /// Both outlive the object.
    MessageHits(const LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);

    HoldingListModel* model() { return &m_model; }
    const QList<MessageHitItem>& rows() const { return m_model.rows(); }
    bool pending() const { return m_pending; } ///< what is shown does not answer the query yet
    bool searching() const { return m_searching; } ///< and for so long that a person should be told

    /// Another query begins a search and stops the one before; the same one is searched again before long; an
    /// empty one ends it all.
    void find(const QString& query);

Q_SIGNALS:
    void changed();

private:
    void search();
    void show(const QList<MessageHit>& hits);

    Scheduler& m_scheduler;
    QString m_query;
    RowListModel<MessageHitItem> m_model;
    bool m_running = false;
    bool m_again = false; ///< messages came while the search ran
    bool m_pending = false;
    bool m_searching = false;
    std::unique_ptr<Timer> m_patience;
    Coalescer m_refreshSoon;
    MessageSearch m_search;
};

}
