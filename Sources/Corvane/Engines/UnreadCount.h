#pragma once

#include <QHash>
#include <QSet>
#include <QString>

namespace corvane {

class LocalDB;

/// The unread messages of the active workspace. After a change of a few people only their conversations are read.
class UnreadCount {
public:
    explicit UnreadCount(LocalDB& db); ///< outlives the count

    int total() const { return m_total; }
    void read(); ///< everything
    void read(const QSet<QString>& contactIds); ///< after their conversations changed

private:
    void readAll(const QString& workspace);

    LocalDB& m_db;
    QString m_workspace; ///< as last read; empty before
    QHash<qint64, int> m_unread; ///< by conversation
    int m_total = 0;
};

}
