// Kills the program while a person decides on drafts, and while drafts are sent.

#include "Hosted.h"
#include "Ordeal.h"
#include "Profile.h"

#include "Foundation/Literals.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Messages/IngestQueries.h"

#include <QSet>
#include <algorithm>

namespace corvane::torture {

namespace {

/// The drafts of one conversation and their states.
class Drafts {
public:
    explicit Drafts(Profile& profile)
        : m_profile(profile)
        , m_conversation(ensureConversation(*profile.open(), u"WHATSAPP"_s, account, u"chat@torture"_s, u"Chat"_s, 1))
    {
    }

    void write(LocalDB& db, int count)
    {
        for (int i = 0; i < count; ++i)
            queueDraft(db, m_conversation, draftText(++m_written), u"torture"_s);
    }

    QList<PendingDraft> all(LocalDB& db) const
    {
        return fetchDrafts(db,
            { DraftStatus::Pending, DraftStatus::Approved, DraftStatus::Sending, DraftStatus::Sent, DraftStatus::Failed,
                DraftStatus::Rejected, DraftStatus::Other },
            m_written + 1);
    }

    /// Checks that every draft exists, none was sent twice, and those marked as sent were sent.
    void check(LocalDB& db, Tally& tally) const
    {
        const QStringList sent = m_profile.books().sent();
        const QSet<QString> different(sent.begin(), sent.end());
        const QList<PendingDraft> drafts = all(db);
        tally.twice = sent.size() - different.size();
        tally.lost = m_written - drafts.size();
        for (const PendingDraft& draft : drafts) {
            const bool wentOut = different.contains(draft.id);
            const DraftStatus state = draft.state();
            if (state == DraftStatus::Sent && !wentOut)
                ++tally.lost;
            if (wentOut && state != DraftStatus::Sent && state != DraftStatus::Sending && !mayHaveGoneOut(draft))
                tally.faults.append(u"%1 went out and counts as %2"_s.arg(draft.id, draft.status));
        }
    }

private:
    Profile& m_profile;
    QString m_conversation;
    int m_written = 0;
};

class DeliveryKills final : public Ordeal {
public:
    explicit DeliveryKills(const QString& program)
        : m_profile(program)
    {
    }

    void round(Tally& tally, Random& random) override
    {
        approveSome(*m_profile.open(), tally);
        const qsizetype wanted = m_profile.books().sent().size() + 1 + upTo(drafts - 1, random);
        m_profile.start({});
        if (!waitFor([&] { return m_profile.books().sent().size() >= wanted; }))
            tally.faults.append(u"the approved messages do not go out"_s);
        pause(upTo(longestDelayMs, random));
        m_profile.kill();
        ++tally.runs;
        const auto db = m_profile.open();
        m_drafts.check(*db, tally);
        checkFile(*db, tally);
    }

    void finish(Tally& tally) override
    {
        approveSome(*m_profile.open(), tally);
        const qsizetype wanted = m_profile.books().sent().size() + drafts;
        m_profile.start({});
        const bool done = waitFor(
            [&] { return m_profile.books().sent().size() >= wanted && fetchApprovedIds(*m_profile.open()).isEmpty(); });
        if (!done || !m_profile.stop())
            tally.faults.append(u"it does not go on"_s);
        m_drafts.check(*m_profile.open(), tally);
    }

private:
    void approveSome(LocalDB& db, Tally& tally)
    {
        m_drafts.write(db, drafts);
        for (const PendingDraft& draft : fetchDrafts(db, { DraftStatus::Pending }, drafts)) {
            if (approveDraft(db, draft.id, draftHash(draft)) == Decided::Taken)
                ++tally.acknowledged;
        }
    }

    static constexpr int drafts = 20; // per run of the program
    Profile m_profile;
    Drafts m_drafts { m_profile };
};

/// A person approves drafts and undoes every other approval. Always runs the hosted program, which simulates the
/// person.
class UndoKills final : public Ordeal {
public:
    void round(Tally& tally, Random& random) override
    {
        begin(*m_profile.open());
        const qsizetype wanted = armed() + 1 + upTo(drafts - 1, random);
        m_profile.start({}, Profile::Deciding::Person);
        if (!waitFor([&] { return armed() >= wanted; }))
            tally.faults.append(u"nobody decides on the drafts"_s);
        pause(upTo(undoWindowMs, random));
        m_profile.kill();
        ++tally.runs;
        const auto db = m_profile.open();
        check(*db, tally);
        checkFile(*db, tally);
    }

    void finish(Tally& tally) override
    {
        m_profile.start({}, Profile::Deciding::Person);
        if (!waitFor([this] { return isSettled(*m_profile.open()); }) || !m_profile.stop())
            tally.faults.append(u"it does not go on"_s);
        check(*m_profile.open(), tally);
    }

private:
    qsizetype armed() const { return m_profile.books().lines(armedBook).size(); }

    QSet<QString> takenBack() const
    {
        const QStringList undone = m_profile.books().lines(undoneBook);
        return { undone.begin(), undone.end() };
    }

    static QList<PendingDraft> pending(LocalDB& db)
    {
        constexpr int all = 1'000'000;
        return fetchDrafts(db, { DraftStatus::Pending }, all);
    }

    /// Rejects the drafts whose approval was undone, and adds new ones in place of these and the sent ones.
    void begin(LocalDB& db)
    {
        const QSet<QString> undone = takenBack();
        for (const PendingDraft& draft : pending(db)) {
            if (undone.contains(draft.id))
                rejectDraft(db, draft.id);
        }
        m_drafts.write(db, drafts - int(pending(db).size()));
    }

    bool isSettled(LocalDB& db) const
    {
        const auto isUndone = [undone = takenBack()](const PendingDraft& draft) {
            return undone.contains(draft.id);
        };
        return std::ranges::all_of(pending(db), isUndone) && fetchApprovedIds(db).isEmpty();
    }

    void check(LocalDB& db, Tally& tally)
    {
        m_drafts.check(db, tally);
        const QSet<QString> undone = takenBack();
        tally.acknowledged = undone.size() + m_profile.books().sent().size();
        for (const PendingDraft& draft : m_drafts.all(db)) {
            const bool isKept = draft.state() == DraftStatus::Pending || draft.state() == DraftStatus::Rejected;
            if (undone.contains(draft.id) && !isKept)
                tally.faults.append(u"the verdict on %1 was taken back, and it is %2"_s.arg(draft.id, draft.status));
        }
    }

    static constexpr int drafts = 10; // at the start of each run
    Profile m_profile { QString() };
    Drafts m_drafts { m_profile };
};

}

std::unique_ptr<Ordeal> deliveryKills(const QString& program)
{
    return std::make_unique<DeliveryKills>(program);
}

std::unique_ptr<Ordeal> undoKills(const QString& /*program*/)
{
    return std::make_unique<UndoKills>();
}

}
