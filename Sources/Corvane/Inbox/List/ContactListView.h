#pragma once

#include "Foundation/Coalescer.h"
#include "Inbox/List/InboxRows.h"
#include "Inbox/List/MessageHits.h"
#include "Inbox/List/RecordHits.h"
#include "Inbox/List/TabCounts.h"
#include "Presentation/Choice.h"

namespace corvane {

class BulkSelection;
class ListFilter;

/// One row per person under the current filter, and the messages and records that a search found. Reads the database at
/// every reload and caches nothing of it.
class ContactListView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::TabItem> tabs READ tabs NOTIFY tabsChanged)
    Q_PROPERTY(corvane::HoldingListModel* contacts READ contacts CONSTANT) ///< of ContactItem
    Q_PROPERTY(corvane::HoldingListModel* messageHits READ messageHits CONSTANT) ///< of MessageHitItem
    Q_PROPERTY(corvane::HoldingListModel* records READ records CONSTANT) ///< of RecordHitItem
    Q_PROPERTY(int hitsAtFirst READ hitsAtFirst NOTIFY changed) ///< how many messages stand above the records
    Q_PROPERTY(QString moreHits READ moreHits NOTIFY changed) ///< what shows the others; empty if there are none
    Q_PROPERTY(QString recordsNotice READ recordsNotice NOTIFY changed) ///< that their search failed; else empty
    Q_PROPERTY(bool atTop READ atTop WRITE setAtTop NOTIFY atTopChanged) ///< the first rows are visible
    Q_PROPERTY(QString newAbove READ newAbove NOTIFY newAboveChanged) ///< such as "3 new above"; empty for none
    Q_PROPERTY(bool loading READ loading NOTIFY changed) ///< until the first reload
    Q_PROPERTY(bool hitsShown READ hitsShown NOTIFY changed) ///< there is something under that title
    Q_PROPERTY(QString hitsTitle READ hitsTitle NOTIFY changed)
    Q_PROPERTY(bool searching READ searching NOTIFY changed) ///< a search is running and takes a while
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed) ///< neither contacts nor results to show, now or soon
    Q_PROPERTY(int selectedIndex READ selectedIndex NOTIFY changed) ///< index of the open person in `contacts`, or -1
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY shownChanged)
public:
    /// Everything outlives the list.
    ContactListView(
        LocalDB& db, Scheduler& scheduler, ListFilter& filter, BulkSelection& bulk, QObject* parent = nullptr);

    const QList<TabItem>& tabs() const { return m_tabs; }
    HoldingListModel* contacts() { return &m_contactModel; }
    HoldingListModel* messageHits() { return m_hits.model(); }
    HoldingListModel* records() { return m_records.model(); }
    int hitsAtFirst() const;
    QString moreHits() const;
    QString recordsNotice() const { return m_records.notice(); }
    bool atTop() const { return m_atTop; }
    void setAtTop(bool atTop);
    QString newAbove() const;
    bool loading() const { return m_loading; }
    bool hitsShown() const { return !m_hits.rows().isEmpty() || m_hits.searching() || m_hits.failed(); }
    QString hitsTitle() const { return m_hits.title(); }
    bool searching() const { return m_hits.searching(); }
    bool searchPending() const
    {
        return m_hits.pending() || m_records.pending();
    } ///< what is shown is of another search
    bool isEmpty() const;
    int selectedIndex() const;
    bool shown() const { return m_shown; }
    void setShown(bool shown); ///< whether it is visible; a hidden list reloads when it is shown

    void appear(); ///< whenever the screen is shown
    Q_INVOKABLE void reload();
    Q_INVOKABLE void openRecord(const QString& key); ///< of a row of `records`
    Q_INVOKABLE void showAllHits(); ///< narrows the search to the messages
    Q_INVOKABLE void showGroup(const QString& key); ///< narrows the search to the group of that row
    void catchUp(); ///< reloads what has changed
    void personChanged(const QString& contactId); ///< reload soon; empty: everyone
    void reloadSoon() { personChanged({}); }
    void present(); ///< updates the rows from what was read

    const QList<ContactRow>& people() const { return m_rows.rows(); } ///< under the filter, ignoring the search
    const QList<ContactRow>& found() const { return m_contacts; } ///< after the search
    const QList<MessageHitItem>& hits() const { return m_hits.rows(); }
    const QString& searchedText() const; ///< without what narrows the search

    /// Of the list, else of a person that the list does not show: filtered out, or beyond its end.
    std::optional<ContactRow> rowOf(const QString& contactId) const;
    ContactItem item(const ContactRow& row); ///< in the words of the screen

    void setOpen(const QString& contactId); ///< marks the row as selected at the next `present`
    QString neighbour(int delta) const; ///< that far below the open row, or its last place; or empty
    void setRead(const QString& contactId); ///< already stored

Q_SIGNALS:
    void read(const std::optional<QStringList>& contactIds); ///< these people, or all; before they are shown
    void changed(); ///< after each reload and each change of the shown rows
    void recordChosen(const FoundRecord& record, const QString& words);
    void tabsChanged();
    void atTopChanged();
    void newAboveChanged();
    void shownChanged();

private:
    bool readChanged();
    void showRead(const std::optional<QStringList>& contactIds);
    QList<TabItem> countedTabs() const;
    void presentCounts();
    void narrowTo(SearchGroup group);

    LocalDB& m_db;
    Scheduler& m_scheduler;
    ListFilter& m_filter;
    BulkSelection& m_bulk;
    bool m_loading = true;
    InboxRows m_rows;
    bool m_allDue = false; ///< the whole list must be read again
    QSet<QString> m_peopleDue; ///< these people must be read again
    QList<ContactRow> m_contacts; ///< the rows after the search
    MessageHits m_hits;
    RecordHits m_records;
    RowListModel<ContactItem> m_contactModel;
    QString m_openId;
    int m_openPlace = 0; ///< the open person's last index
    bool m_atTop = true;
    qint64 m_topSeenTs = 0; ///< the newest message when the top was last visible
    TabCounts m_counts;
    QList<TabItem> m_tabs;
    bool m_shown = true;
    Coalescer m_reloadSoon;
    Coalescer m_countsSoon;
    std::unique_ptr<Timer> m_midnight;
};

}
