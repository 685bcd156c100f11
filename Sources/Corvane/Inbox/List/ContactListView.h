#pragma once

#include "Foundation/Coalescer.h"
#include "Inbox/List/InboxRows.h"
#include "Inbox/List/MessageHits.h"
#include "Inbox/List/TabCounts.h"
#include "Presentation/Choice.h"

namespace corvane {

class BulkSelection;
class ListFilter;

/// One row per person, under the filter that the person chose, and the messages that a search found. It reads the
/// database afresh at every reload and keeps nothing of it.
class ContactListView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::TabItem> tabs READ tabs NOTIFY tabsChanged)
    Q_PROPERTY(corvane::HoldingListModel* contacts READ contacts CONSTANT) ///< of ContactItem
    Q_PROPERTY(corvane::HoldingListModel* messageHits READ messageHits CONSTANT) ///< of MessageHitItem
    Q_PROPERTY(bool atTop READ atTop WRITE setAtTop NOTIFY atTopChanged) ///< the first rows are in sight
    Q_PROPERTY(QString newAbove READ newAbove NOTIFY newAboveChanged) ///< such as "3 new above"; empty for none
    Q_PROPERTY(bool loading READ loading NOTIFY changed) ///< until the first reload
    Q_PROPERTY(bool searching READ searching NOTIFY changed) ///< the messages are searched: takes a while
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed) ///< neither a contact nor a hit to show, nor to come
    Q_PROPERTY(int selectedIndex READ selectedIndex NOTIFY changed) ///< of the open person in `contacts`, or -1
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY shownChanged)
public:
    /// Everything outlives the list.
    ContactListView(
        LocalDB& db, Scheduler& scheduler, ListFilter& filter, BulkSelection& bulk, QObject* parent = nullptr);

    const QList<TabItem>& tabs() const { return m_tabs; }
    HoldingListModel* contacts() { return &m_contactModel; }
    HoldingListModel* messageHits() { return m_hits.model(); }
    bool atTop() const { return m_atTop; }
    void setAtTop(bool atTop);
    QString newAbove() const;
    bool loading() const { return m_loading; }
    bool searching() const { return m_hits.searching(); }
    bool hitsPending() const { return m_hits.pending(); } ///< `messageHits` does not answer the search yet
    bool isEmpty() const { return m_contactModel.rows().isEmpty() && m_hits.rows().isEmpty() && !m_hits.pending(); }
    int selectedIndex() const;
    bool shown() const { return m_shown; }
    void setShown(bool shown); ///< whether it can be seen; a list that cannot is read again when it shows

    void appear(); ///< each time the screen shows
    Q_INVOKABLE void reload();
    void catchUp(); ///< reads what has changed since it was read
    void personChanged(const QString& contactId); ///< read again soon; empty: everybody
    void reloadSoon() { personChanged({}); }
    void present(); ///< as it is by now

    const QList<ContactRow>& people() const { return m_rows.rows(); } ///< under the filter, whatever the search
    const QList<ContactRow>& found() const { return m_contacts; } ///< what the search leaves of them
    const QList<MessageHitItem>& hits() const { return m_hits.rows(); }
    const QString& search() const; ///< as typed

    /// Of the list, else of a person whom the list does not show: filtered away, or beyond its end.
    std::optional<ContactRow> rowOf(const QString& contactId) const;
    ContactItem item(const ContactRow& row); ///< in the words of the screen

    void setOpen(const QString& contactId); ///< who is marked as selected; shown by the next `present`
    QString neighbour(int delta) const; ///< so many rows below the open one, or where it stood; empty for none
    void setRead(const QString& contactId); ///< as the store was told

Q_SIGNALS:
    void read(const std::optional<QStringList>& contactIds); ///< these people, or all; before it is shown
    void changed(); ///< after each reload and each change of what is shown
    void tabsChanged();
    void atTopChanged();
    void newAboveChanged();
    void shownChanged();

private:
    bool readChanged();
    void showRead(const std::optional<QStringList>& contactIds);
    QList<TabItem> countedTabs() const;
    void presentCounts();

    LocalDB& m_db;
    Scheduler& m_scheduler;
    ListFilter& m_filter;
    BulkSelection& m_bulk;
    bool m_loading = true;
    InboxRows m_rows;
    bool m_allDue = false; ///< the whole list is to be read again
    QSet<QString> m_peopleDue; ///< or these people of it
    QList<ContactRow> m_contacts; ///< of the rows, what the search leaves
    MessageHits m_hits;
    RowListModel<ContactItem> m_contactModel;
    QString m_openId;
    int m_openPlace = 0; ///< where in the list the open person last stood
    bool m_atTop = true;
    qint64 m_topSeenTs = 0; ///< the newest message when the top was last in sight
    TabCounts m_counts;
    QList<TabItem> m_tabs;
    bool m_shown = true;
    Coalescer m_reloadSoon;
    Coalescer m_countsSoon;
    std::unique_ptr<Timer> m_midnight;
};

}
