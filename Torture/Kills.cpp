// Kills the program during its work, repeatedly, on one profile. See also DraftKills.cpp.

#include "Ordeal.h"
#include "Profile.h"

#include "Care/Backup/Backup.h"
#include "Foundation/Literals.h"
#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Core/Snapshot.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Search/IndexedSearch.h"
#include "Store/Search/SearchIndex.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

namespace corvane::torture {

namespace {

/// Checks that every acknowledged message is stored exactly once.
void checkMessages(Profile& profile, LocalDB& db, Tally& tally)
{
    const qint64 acknowledged = profile.books().acknowledged();
    const Profile::Told told = profile.told(db, acknowledged);
    tally.acknowledged = acknowledged;
    tally.lost += acknowledged - told.messages;
    tally.twice += told.rows - told.messages;
}

class IngestKills final : public Ordeal {
public:
    explicit IngestKills(const QString& program)
        : m_profile(program)
    {
    }

    void round(Tally& tally, Random& random) override
    {
        const qint64 wanted = m_profile.books().acknowledged() + 1 + upTo(messages - 1, random);
        m_profile.start({ messages });
        if (!waitFor([&] { return m_profile.books().acknowledged() >= wanted; }))
            tally.faults.append(u"the messages are not stored"_s);
        pause(upTo(longestDelayMs, random));
        m_profile.kill();
        ++tally.runs;
        const auto db = m_profile.open();
        checkMessages(m_profile, *db, tally);
        checkFile(*db, tally);
    }

    void finish(Tally& tally) override
    {
        const qint64 all = m_profile.books().acknowledged() + messages;
        m_profile.start({ messages });
        if (!waitFor([&] { return m_profile.books().acknowledged() >= all; }) || !m_profile.stop())
            tally.faults.append(u"it does not go on"_s);
        const auto db = m_profile.open();
        checkMessages(m_profile, *db, tally);
        const auto unread = db->scalar(u"SELECT SUM(unread) FROM unified_conversation;"_s);
        if (unread != QString::number(all))
            tally.faults.append(u"%1 of %2 messages are unread"_s.arg(unread.value_or(u"none"_s)).arg(all));
    }

private:
    static constexpr int messages = 200; // per run of the program
    Profile m_profile;
};

/// Inserts many messages at once.
void fill(LocalDB& db, int messages)
{
    const QString conversation = ensureConversation(db, u"WHATSAPP"_s, account, u"old@torture"_s, u"Old"_s, 1);
    db.run(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<?2) "
           "INSERT INTO unified_message(id, workspace_id, conversation_id, direction, body, ts, updated_at) "
           "SELECT 'old:' || i, 'local', ?1, 'IN', 'Old message ' || i || ' about ' || hex(randomblob(20)), i, 1 "
           "FROM n;"_s,
        { conversation, qint64(messages) });
}

class SearchKills final : public Ordeal {
public:
    explicit SearchKills(const QString& program)
        : m_profile(program)
        , m_index(SearchIndex::pathBeside(m_profile.paths().database()))
    {
        fill(*m_profile.open(), messages);
    }

    void round(Tally& tally, Random& random) override
    {
        if (m_buildMs == 0)
            build(tally);
        else if (random() % 2 == 0)
            SearchIndex::remove(m_index);
        m_profile.start({ upTo(20, random) });
        if (!waitFor([this] { return QFile::exists(m_index); }))
            tally.faults.append(u"no index is built"_s);
        pause(upTo(m_buildMs, random));
        m_profile.kill();
        ++tally.runs;
        check(tally, random);
    }

    void finish(Tally& tally) override
    {
        build(tally);
        Random random(1);
        check(tally, random);
        if (!isBuilt())
            tally.faults.append(u"the index is not complete"_s);
    }

private:
    std::unique_ptr<SqlConnection> reader(const QString& path) const { return SqlConnection::reader(path, m_never); }

    bool isBuilt() const
    {
        const auto index = reader(m_index);
        return searchByIndex(*reader(m_profile.paths().database()), *index, u"about"_s, 1, {}).has_value();
    }

    void build(Tally& tally)
    {
        QElapsedTimer timer;
        timer.start();
        m_profile.start({});
        if (!waitFor([this] { return isBuilt(); }) || !m_profile.stop())
            tally.faults.append(u"the index is not built"_s);
        m_buildMs = int(timer.elapsed());
    }

    /// The index must find the same messages as reading all of them.
    void check(Tally& tally, Random& random)
    {
        const auto db = reader(m_profile.paths().database());
        const auto index = reader(m_index);
        for (int i = 0; i < 3; ++i) {
            const QString words = i == 0 ? u"kiln"_s : u"message %1"_s.arg(upTo(messages, random));
            const auto found = searchByIndex(*db, *index, words, 60, {});
            if (!found)
                continue; // reports itself as incomplete
            ++tally.acknowledged;
            if (*found != searchMessages(*db, words, 60))
                tally.faults.append(u"the index does not find “%1” as it should"_s.arg(words));
        }
        if (const QString trouble = integrityTrouble(*db); !trouble.isEmpty())
            tally.faults.append(u"the database is damaged: "_s + trouble);
    }

    static constexpr int messages = 5000; // enough for several indexing steps
    Profile m_profile;
    const QString m_index;
    const std::shared_ptr<std::atomic<bool>> m_never = std::make_shared<std::atomic<bool>>(false);
    int m_buildMs = 0;
};

class BackupKills final : public Ordeal {
public:
    explicit BackupKills(const QString& program)
        : m_profile(program)
    {
        fill(*m_profile.open(), 5000);
        QDir().mkpath(m_profile.file(u"backups"_s));
    }

    void round(Tally& tally, Random& random) override
    {
        if (m_tookMs == 0) {
            m_profile.start({ 1'000'000, 5 }); // keeps receiving messages during the backups
            backUp(tally);
        }
        const auto backup = m_profile.command({ u"backup"_s, m_file });
        pause(upTo(m_tookMs, random));
        backup->kill();
        ++tally.runs;
        verify(tally);
        if (!m_profile.isRunning())
            tally.faults.append(u"the program ended"_s);
    }

    void finish(Tally& tally) override
    {
        backUp(tally);
        verify(tally);
        const QStringList left
            = QDir(m_profile.file(u"backups"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        if (left != QStringList { u"shop.tar"_s })
            tally.faults.append(u"beside the backup lies "_s + left.join(u", "_s));
        if (!m_profile.stop())
            tally.faults.append(u"the program does not end"_s);
    }

private:
    void backUp(Tally& tally)
    {
        QElapsedTimer timer;
        timer.start();
        if (m_profile.run({ u"backup"_s, m_file }) != 0)
            tally.faults.append(u"no backup can be made"_s);
        m_tookMs = int(timer.elapsed());
    }

    void verify(Tally& tally)
    {
        ++tally.acknowledged;
        if (!verifyBackup(m_file, {}, std::make_shared<BackupProgress>()))
            ++tally.lost;
    }

    Profile m_profile;
    const QString m_file = m_profile.file(u"backups/shop.tar"_s);
    int m_tookMs = 0;
};

}

void checkFile(LocalDB& db, Tally& tally)
{
    if (const QString trouble = integrityTrouble(db); !trouble.isEmpty())
        tally.faults.append(u"the database is damaged: "_s + trouble);
    if (const RecordCheck record = checkRecords(db); !record.sound)
        tally.faults.append(record.words);
}

std::unique_ptr<Ordeal> ingestKills(const QString& program)
{
    return std::make_unique<IngestKills>(program);
}

std::unique_ptr<Ordeal> searchKills(const QString& program)
{
    return std::make_unique<SearchKills>(program);
}

std::unique_ptr<Ordeal> backupKills(const QString& program)
{
    return std::make_unique<BackupKills>(program);
}

}
