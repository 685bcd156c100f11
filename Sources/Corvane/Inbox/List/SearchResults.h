#pragma once

#include "Inbox/List/MessageHits.h"
#include "Inbox/List/RecordHits.h"

namespace corvane {

class ListFilter;

/// What the search of the list found besides people: messages, and records in groups.
class SearchResults : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* messages READ messages CONSTANT) ///< of MessageHitItem
    Q_PROPERTY(corvane::HoldingListModel* records READ records CONSTANT) ///< of RecordHitItem
    Q_PROPERTY(bool messagesShown READ messagesShown NOTIFY changed) ///< there is something under that title
    Q_PROPERTY(QString messagesTitle READ messagesTitle NOTIFY changed)
    Q_PROPERTY(int messagesAtFirst READ messagesAtFirst NOTIFY changed) ///< how many stand above the records
    Q_PROPERTY(
        QString moreMessages READ moreMessages NOTIFY changed) ///< what shows the others; empty if there are none
    Q_PROPERTY(QString recordsNotice READ recordsNotice NOTIFY changed) ///< that their search failed; else empty
    Q_PROPERTY(bool searching READ searching NOTIFY changed) ///< a search is running and takes a while
public:
    /// Everything outlives the results.
    SearchResults(LocalDB& db, Scheduler& scheduler, ListFilter& filter, QObject* parent = nullptr);

    HoldingListModel* messages() { return m_hits.model(); }
    HoldingListModel* records() { return m_records.model(); }
    bool messagesShown() const { return !m_hits.rows().isEmpty() || m_hits.searching() || m_hits.failed(); }
    QString messagesTitle() const { return m_hits.title(); }
    int messagesAtFirst() const;
    QString moreMessages() const;
    QString recordsNotice() const { return m_records.notice(); }
    bool searching() const { return m_hits.searching(); }
    bool pending() const { return m_hits.pending() || m_records.pending(); } ///< what is shown is of another search
    bool isEmpty() const; ///< there is nothing to show, now or soon

    void find(const SearchQuery& query); ///< empty: nothing is found
    const QString& words() const; ///< without what narrows the search
    QString personOf(const QString& messageId) const; ///< of a row of `messages`; else empty
    Q_INVOKABLE void openRecord(const QString& key); ///< of a row of `records`
    Q_INVOKABLE void showAllMessages(); ///< narrows the search to them
    Q_INVOKABLE void showGroup(const QString& key); ///< narrows the search to the group of that row

Q_SIGNALS:
    void changed();
    void recordChosen(const FoundRecord& record, const QString& words);

private:
    void narrowTo(SearchGroup group);

    ListFilter& m_filter;
    MessageHits m_hits;
    RecordHits m_records;
};

}
