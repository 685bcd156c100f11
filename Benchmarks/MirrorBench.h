#pragma once

#include "BareStatement.h"
#include "Foundation/Literals.h"

#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Store/Messages/IngestQueries.h"

#include <QTemporaryDir>
#include <vector>

namespace corvane::bench {

/// A copy of the mirror under the store, and a second connection to it through the C interface. The copy is in TMPDIR,
/// which determines the disk that is measured.
class MirrorBench {
public:
    MirrorBench();
    ~MirrorBench();
    MirrorBench(const MirrorBench&) = delete;
    MirrorBench& operator=(const MirrorBench&) = delete;

    QString path() const { return m_folder.filePath(u"mirror.db"_s); }
    LocalDB& store() { return *m_store; }
    sqlite3* bare() { return m_bare; }
    QByteArray contactsStatement() const; ///< the list of people in a single statement over everyone

    /// The last statement that `work` runs on a separate store, so that the baseline runs exactly the same.
    QByteArray statementOf(const std::function<void(LocalDB&)>& work);

    /// A live message as an engine reports it: a new text from a known person.
    IncomingMessage nextMessage();

    /// Stores the next message with the store's own statements, five for a live one and four for a historical one;
    /// everything else is known in advance.
    enum class Prepared { Once, EachTime };
    enum class Age { Live, Historical };
    void ingestBare(Prepared prepared, Age age = Age::Live);

private:
    std::unique_ptr<LocalDB> open();
    std::unique_ptr<LocalDB> openTraced();
    void learnStatements();

    QTemporaryDir m_folder;
    SystemScheduler m_scheduler;
    UserDefaults m_defaults { m_folder.filePath(u"defaults.ini"_s) };
    NotificationCentre m_centre;
    std::unique_ptr<LocalDB> m_store;
    sqlite3* m_bare = nullptr;
    QList<QByteArray> m_ingest; ///< the five statements
    std::vector<BareStatement> m_ingestPrepared;
    QStringList m_handles;
    qsizetype m_messages = 0;
};

}
