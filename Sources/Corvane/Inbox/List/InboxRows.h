#pragma once

#include "Inbox/List/ContactItem.h"

#include <QDate>
#include <QHash>

namespace corvane {

/// The people under a filter as last read, and their items for the screen. After a change of a few people only those
/// are read again.
class InboxRows {
public:
    explicit InboxRows(LocalDB& db); ///< outlives the rows

    const QList<ContactRow>& rows() const { return m_rows; }

    void readAll(InboxFilter filter);

    /// Reads these people again and moves each to its current position. False if that does not determine the end of the
    /// list: then all must be read.
    [[nodiscard]] bool read(InboxFilter filter, const QStringList& contactIds);

    void setRead(const QString& contactId); ///< already stored

    /// Something that is shown but not in the row has changed, such as a delivery state.
    void forget(const QStringList& contactIds);

    /// `row` may be of someone who is not listed.
    ContactItem item(const ContactRow& row, const DateWords& words);
    QList<ContactItem> items(const QList<ContactRow>& rows, const DateWords& words);

private:
    struct Shown {
        ContactRow row;
        ContactItem item;
        QDate day; ///< the day for which the relative times are valid
    };

    LocalDB& m_db;
    QList<ContactRow> m_rows;
    QHash<QString, Shown> m_shown;
};

/// `rows`, at most `limit` in list order, after these people changed to `changed`; people missing there have left the
/// list. Nothing if the last position may belong to someone who was not listed.
std::optional<QList<ContactRow>> withChanged(
    const QList<ContactRow>& rows, const QStringList& contactIds, const QList<ContactRow>& changed, int limit);

}
