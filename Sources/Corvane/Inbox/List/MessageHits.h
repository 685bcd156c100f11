#pragma once

#include "Foundation/Coalescer.h"
#include "Inbox/List/ContactItem.h"
#include "Presentation/RowListModel.h"
#include "Store/Search/MessageSearch.h"

namespace corvane {

/// The messages that match the search. A search may take seconds: the old results stay until the new ones arrive,
/// unless that takes noticeably long.
class MessageHits : public QObject {
    Q_OBJECT
public:
    /// Both outlive the object.
    MessageHits(LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);

    HoldingListModel* model() { return &m_model; }
    const QList<MessageHitItem>& rows() const { return m_model.rows(); }
    bool pending() const { return m_pending; } ///< the results are not up to date with the query
    QString title() const; ///< above the rows
    bool failed() const { return m_failed; } ///< as the title says
    bool searching() const { return m_searching; } ///< and for so long that it should be indicated

    /// A new query starts a search and cancels the previous one; the same query is searched again soon; an empty one
    /// clears everything.
    void find(const SearchQuery& query);

Q_SIGNALS:
    void changed();

private:
    void search();
    void show(const FoundMessages& found);

    Scheduler& m_scheduler;
    SearchQuery m_query;
    RowListModel<MessageHitItem> m_model;
    bool m_running = false;
    bool m_again = false; ///< messages arrived during the search
    bool m_pending = false;
    bool m_searching = false;
    std::optional<int> m_indexPercent;
    bool m_failed = false;
    std::unique_ptr<Timer> m_patience;
    Coalescer m_refreshSoon;
    MessageSearch m_search;
};

}
