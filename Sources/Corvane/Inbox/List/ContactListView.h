#pragma once

#include "Foundation/Coalescer.h"
#include "Inbox/List/InboxRows.h"
#include "Inbox/List/SearchResults.h"
#include "Inbox/List/TabCounts.h"
#include "Presentation/Choice.h"

namespace corvane {

class BulkSelection;
class ListFilter;

/// One row per person under the current filter, and what a search found besides. Reads the database at every reload and
/// caches nothing of it.
class ContactListView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::TabItem> tabs READ tabs NOTIFY tabsChanged)
    Q_PROPERTY(corvane::HoldingListModel* contacts READ contacts CONSTANT) ///< of ContactItem
    Q_PROPERTY(corvane::SearchResults* results READ results CONSTANT)
    Q_PROPERTY(bool atTop READ atTop WRITE setAtTop NOTIFY atTopChanged) ///< the first rows are visible
    Q_PROPERTY(QString newAbove READ newAbove NOTIFY newAboveChanged) ///< such as "3 new above"; empty for none
    Q_PROPERTY(bool loading READ loading NOTIFY changed) ///< until the first reload
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed) ///< neither contacts nor results to show, now or soon
    Q_PROPERTY(int selectedIndex READ selectedIndex NOTIFY changed) ///< index of the open person in `contacts`, or -1
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY shownChanged)
public:
    /// Everything outlives the list.
    ContactListView(
        LocalDB& db, Scheduler& scheduler, ListFilter& filter, BulkSelection& bulk, QObject* parent = nullptr);

    const QList<TabItem>& tabs() const { return m_tabs; }
    HoldingListModel* contacts() { return &m_contactModel; }
    SearchResults* results() { return &m_results; }
    bool atTop() const { return m_atTop; }
    void setAtTop(bool atTop);
    QString newAbove() const;
    bool loading() const { return m_loading; }
    bool isEmpty() const;
    int selectedIndex() const;
    bool shown() const { return m_shown; }
    void setShown(bool shown); ///< whether it is visible; a hidden list reloads when it is shown

    void appear(); ///< whenever the screen is shown
    Q_INVOKABLE void reload();
    void catchUp(); ///< reloads what has changed
    void personChanged(const QString& contactId); ///< reload soon; empty: everyone
    void reloadSoon() { personChanged({}); }
    void present(); ///< updates the rows from what was read

    const QList<ContactRow>& people() const { return m_rows.rows(); } ///< under the filter, ignoring the search
    const QList<ContactRow>& found() const { return m_contacts; } ///< after the search

    /// Of the list, else of a person that the list does not show: filtered out, or beyond its end.
    std::optional<ContactRow> rowOf(const QString& contactId) const;
    ContactItem item(const ContactRow& row); ///< in the words of the screen

    void setOpen(const QString& contactId); ///< marks the row as selected at the next `present`
    QString neighbour(int delta) const; ///< that far below the open row, or its last place; or empty
    void setRead(const QString& contactId); ///< already stored

Q_SIGNALS:
    void read(const std::optional<QStringList>& contactIds); ///< these people, or all; before they are shown
    void changed(); ///< after each reload and each change of the shown rows
    void tabsChanged();
    void atTopChanged();
    void newAboveChanged();
    void shownChanged();

private:
    bool readChanged();
    void showRead(const std::optional<QStringList>& contactIds);
    void presentChanged(const QStringList& contactIds); ///< of the flat list
    void mark(ContactItem& item) const;
    void presented(const QStringList& contactIds);
    QList<TabItem> countedTabs() const;
    void presentCounts();

    LocalDB& m_db;
    Scheduler& m_scheduler;
    ListFilter& m_filter;
    BulkSelection& m_bulk;
    bool m_loading = true;
    InboxRows m_rows;
    bool m_allDue = false; ///< the whole list must be read again
    QSet<QString> m_peopleDue; ///< these people must be read again
    QList<ContactRow> m_contacts; ///< the rows after the search
    SearchResults m_results;
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
