// Runs the store in this process, on files that fail at each of its writes in turn.

#include "FaultyFiles.h"
#include "Ordeal.h"
#include "Profile.h"

#include "Foundation/Literals.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Core/Snapshot.h"
#include "Store/Core/Transaction.h"
#include "Store/Core/Upkeep.h"
#include "Store/Messages/IngestQueries.h"

#include <QFile>

namespace corvane::torture {

namespace {

constexpr int steps = 12;
constexpr int faultsPerRound = 20;
constexpr int stride = 7919; // distance between faults: spreads a few over all writes, and many reach each one

enum class Begin { WithFile, WithNothing };

class FailingWrites final : public Ordeal {
public:
    FailingWrites(const QString& program, Fault fault, Begin begin)
        : m_profile(program)
        , m_fault(fault)
        , m_begin(begin)
    {
        m_tables = tableColumns(*m_profile.open()).size();
        QFile::rename(database(), fresh());
        m_operations = work(0, nullptr, 0);
    }

    void round(Tally& tally, Random& random) override
    {
        for (int i = 0; i < faultsPerRound; ++i) {
            m_at = (m_at + stride) % m_operations;
            work(m_at + 1, &tally, random());
            ++tally.runs;
        }
    }

private:
    QString database() const { return m_profile.paths().database(); }
    QString fresh() const { return m_profile.file(u"fresh.db"_s); }

    /// Stores a message, and writes and approves a draft, as the program does.
    bool step(LocalDB& db, int number) const
    {
        Transaction transaction(db);
        if (!transaction.begun())
            return false;
        const auto stored = storeMessage(db, u"WHATSAPP"_s, account,
            { u"chat%1@torture"_s.arg(number % 3), messageId(number), QString(700, u'x'), false, number, {}, {}, {}, {},
                {} });
        if (!stored)
            return false;
        if (stored->isNew)
            raiseUnread(db, stored->conversationId);
        if (!transaction.commit())
            return false;
        if (!queueDraft(db, stored->conversationId, u"Answer %1"_s.arg(number), u"torture"_s))
            return false;
        const auto waiting = fetchDrafts(db, { DraftStatus::Pending }, 1);
        return !waiting.isEmpty() && approveDraft(db, waiting.first().id, draftHash(waiting.first())) == Decided::Taken;
    }

    /// Runs the steps after `done` until one fails; returns how many are done.
    int go(LocalDB& db, int done) const
    {
        db.exec(u"PRAGMA wal_autocheckpoint=20;"_s); // so that the few steps include some checkpoints
        while (done < steps && step(db, done + 1))
            ++done;
        return done;
    }

    /// Runs all steps with a fault at the given operation; returns the number of operations.
    qint64 work(qint64 failsAt, Tally* tally, quint32 seed)
    {
        for (const QString& suffix : { u""_s, u"-wal"_s, u"-shm"_s })
            QFile::remove(database() + suffix);
        if (m_begin == Begin::WithFile)
            QFile::copy(fresh(), database());
        int done = 0;
        FaultyFiles files(m_fault, failsAt);
        {
            const auto db = m_profile.open();
            done = go(*db, done);
            if (m_fault == Fault::FullDisk) {
                files.mend();
                done = go(*db, done);
            }
        }
        const qint64 operations = files.operations();
        if (m_fault == Fault::PowerCut && files.hasFailed())
            files.losePower(seed);
        files.mend();
        if (tally)
            check(done, *tally);
        return operations;
    }

    void check(int done, Tally& tally)
    {
        const auto db = m_profile.open();
        tally.acknowledged += done;
        tally.lost += done - m_profile.told(*db, done).messages;
        const auto approved = [&] {
            return int(fetchApprovedIds(*db).size());
        };
        tally.lost += std::max(0, done - approved());
        if (go(*db, done) != steps)
            tally.faults.append(u"it does not go on"_s);
        const Profile::Told told = m_profile.told(*db, steps);
        tally.lost += steps - told.messages;
        tally.twice += told.rows - told.messages;
        if (tableColumns(*db).size() != m_tables)
            tally.faults.append(u"tables are missing"_s);
        if (const QString trouble = integrityTrouble(*db); !trouble.isEmpty())
            tally.faults.append(u"the database is damaged: "_s + trouble);
        if (const RecordCheck record = checkRecords(*db); !record.sound)
            tally.faults.append(record.words);
    }

    Profile m_profile;
    const Fault m_fault;
    const Begin m_begin;
    qsizetype m_tables = 0;
    qint64 m_operations = 0;
    qint64 m_at = 0;
};

}

std::unique_ptr<Ordeal> fullDiskAtEachWrite(const QString& program)
{
    return std::make_unique<FailingWrites>(program, Fault::FullDisk, Begin::WithFile);
}

std::unique_ptr<Ordeal> powerCuts(const QString& program)
{
    return std::make_unique<FailingWrites>(program, Fault::PowerCut, Begin::WithFile);
}

std::unique_ptr<Ordeal> powerCutsAtFirstStart(const QString& program)
{
    return std::make_unique<FailingWrites>(program, Fault::PowerCut, Begin::WithNothing);
}

}
