#pragma once

#include "Inbox/List/ContactItem.h"

#include <QDate>
#include <QHash>

namespace corvane {

/// The people under a filter as last read, and how the screen shows them. After a change of a few people only
/// those are read again.
class InboxRows {
public:
    explicit InboxRows(LocalDB& db); ///< outlives the rows

    const QList<ContactRow>& rows() const { return m_rows; }

    void readAll(InboxFilter filter);

    /// Reads these people again and puts each where they belong now. False where that does not tell who stands at
    /// the end of the list: then all are to be read.
    [[nodiscard]] bool read(InboxFilter filter, const QStringList& contactIds);

    void setRead(const QString& contactId); ///< as the store was told

    /// Something is to be seen of them that their row does not tell, such as how far their last message got.
    void forget(const QStringList& contactIds);

    /// `row` may be of somebody who is not listed.
    ContactItem item(const ContactRow& row, const DateWords& words);
    QList<ContactItem> items(const QList<ContactRow>& rows, const DateWords& words);

private:
    struct Shown {
        ContactRow row;
        ContactItem item;
        QDate day; ///< on which the words of its time hold
    };

    LocalDB& m_db;
    QList<ContactRow> m_rows;
    QHash<QString, Shown> m_shown;
};

/// `rows`, at most `limit` in the order of the list, after these people changed to what `changed` says; who is
/// missing there has left the list. Nothing where the last place may go to somebody who was not listed.
std::optional<QList<ContactRow>> withChanged(
    const QList<ContactRow>& rows, const QStringList& contactIds, const QList<ContactRow>& changed, int limit);

}
