#pragma once

#include "Foundation/Coalescer.h"
#include "Inbox/List/RecordHitItem.h"
#include "Presentation/RowListModel.h"
#include "Store/Core/LatestRead.h"

namespace corvane {

/// What a search found besides people and messages, in groups. The old results stay until the new ones arrive.
class RecordHits : public QObject {
    Q_OBJECT
public:
    /// Both outlive the object.
    RecordHits(LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);

    HoldingListModel* model() { return &m_model; }
    const QList<RecordHitItem>& rows() const { return m_model.rows(); }
    bool pending() const { return m_pending; } ///< the results are not up to date with the query
    QString notice() const; ///< that it failed; else empty

    /// A new query starts a search and cancels the previous one; the same query is searched again soon; an empty one
    /// clears everything.
    void find(const SearchQuery& query);

    const QList<FoundRecord>& records() const { return m_records; } ///< of the rows, and one more of a shortened group
    std::optional<FoundRecord> record(const QString& key) const; ///< of a row

Q_SIGNALS:
    void changed();

private:
    void search();
    void show(const FoundRecords& found);

    LocalDB& m_db;
    Scheduler& m_scheduler;
    SearchQuery m_query;
    QList<FoundRecord> m_records;
    RowListModel<RecordHitItem> m_model;
    bool m_pending = false;
    bool m_failed = false;
    Coalescer m_refreshSoon;
    LatestRead m_read;
};

}
