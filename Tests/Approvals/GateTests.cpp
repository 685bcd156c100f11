// A randomised test: two copies of the program, other processes, engines, crashes and a person act in random order. No
// text may reach an engine without a current approval of exactly that text, and no rejected draft may ever be sent. A
// failure prints its seed; CORVANE_GATE_FIRST=seed CORVANE_GATE_SEEDS=1 reruns that order alone.

#include "Approvals/ApprovalsStore.h"
#include "Foundation/Literals.h"

#include "Calls/RecordedCalls.h"
#include "Engines/EngineProcesses.h"
#include "Engines/EngineSpec.h"
#include "Foundation/Json.h"
#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/AccountNamed.h"
#include "Support/EngineWorld.h"
#include "Support/LogCapture.h"

#include <QDir>
#include <gtest/gtest.h>
#include <random>

using namespace corvane;
namespace {

/// Thrown to simulate a crash of a copy between two of its steps.
struct Crash {
    size_t copy;
};

/// The text that leaves the machine, and its recipient.
struct Content {
    QString account;
    QString channel;
    QString recipient;
    QString text;

    bool operator==(const Content&) const = default;
};

Content contentOf(const PendingDraft& draft)
{
    return { draft.accountId, draft.channel, draft.externalId, draft.body };
}

/// A copy's view of the shared clock. It can call `stepIn` when the copy reads the time, which happens before each of
/// the copy's writes.
class OwnClock final : public Scheduler {
public:
    explicit OwnClock(VirtualScheduler& shared)
        : m_shared(shared)
    {
    }
    qint64 nowMs() const override
    {
        if (stepIn && --lookUntilStep == 0)
            std::exchange(stepIn, {})();
        return m_shared.nowMs();
    }
    qint64 monotonicMs() const override { return m_shared.monotonicMs(); }
    std::unique_ptr<Timer> after(Milliseconds delay, std::function<void()> callback) override
    {
        return m_shared.after(delay, std::move(callback));
    }
    std::unique_ptr<Timer> every(Milliseconds period, std::function<void()> callback) override
    {
        return m_shared.every(period, std::move(callback));
    }

    mutable std::function<void()> stepIn;
    mutable int lookUntilStep = 0;

private:
    VirtualScheduler& m_shared;
};

/// Engines that pass every line they receive to a callback, which may refuse it.
class Engines final : public ProcessLauncher {
public:
    using Line = std::function<bool(const QString& account, const QJsonObject& command)>;
    explicit Engines(Line line)
        : m_line(std::move(line))
    {
    }
    Result<std::shared_ptr<ChildProcess>> start(const ProcessSpec& spec, Handlers) override
    {
        return std::make_shared<Child>(spec.environment.value(u"WHATSAPP_ACCOUNT_NAME"_s), m_line);
    }
    int marked(const QString&, Marked) override { return 0; }

private:
    struct Child final : ChildProcess {
        Child(const QString& slug, const Line& lineRead)
            : account(slug)
            , line(lineRead)
        {
        }
        qint64 pid() const override { return 1; }
        bool isRunning() const override { return true; }
        Result<void> write(const QByteArray& bytes) override
        {
            return line(account, *jsonObject(bytes)) ? Result<void> {} : failure(u"full"_s);
        }
        bool isInputOpen() const override { return true; }
        bool hasRead(const QByteArray&) override { return true; }
        bool withdraw(const QByteArray&) override { return false; }
        void terminate() override { }
        QString account;
        const Line& line;
    };
    Line m_line;
};

/// Records what each banner reported.
class Banners final : public NotificationService {
public:
    explicit Banners(std::function<std::optional<PendingDraft>(const QString& id)> row)
        : m_row(std::move(row))
    {
    }
    bool isAvailable() const override { return true; }
    void setResponseHandler(ResponseHandler handler) override { m_handler = std::move(handler); }
    void show(const Banner& banner) override
    {
        const QString id = banner.userInfo.value(u"approvalId"_s).toString();
        if (const auto row = m_row(id); row && banner.actions.size() == 2)
            told.insert(id, contentOf(*row));
    }
    void withdraw(const QVariantMap&) override { }
    void press(const QString& id, const QString& action)
    {
        m_handler({ { u"approvalKind"_s, u"draft"_s }, { u"approvalId"_s, id } }, action);
    }
    QHash<QString, Content> told; ///< by draft ID

private:
    std::function<std::optional<PendingDraft>(const QString& id)> m_row;
    ResponseHandler m_handler;
};

const QList<Account>& accounts()
{
    static const QList<Account> both = [] {
        QList<Account> result;
        for (const QString& slug : { u"shop"_s, u"mail"_s })
            result.append(accountNamed(slug));
        return result;
    }();
    return both;
}

/// A running copy of the program, reduced to the handling of drafts.
struct Copy {
    Copy(EngineSurroundings& at, Engines::Line line)
        : clock(at.clock)
        , launcher(std::move(line))
        , surroundings(at)
        , banners([this](const QString& id) { return fetchDraft(engine.db(), id); })
        , engine({ at.home.paths(), clock, launcher, at.ports, at.background, at.keychain, notifier, at.desktop },
              at.openDatabase(clock))
    {
        engine.db().exec(u"PRAGMA synchronous=OFF; PRAGMA busy_timeout=0;"_s);
        notifier.bootstrap();
        for (const Account& account : accounts())
            engine.start(account);
        approvals.attach(delivery, calls);
    }

    OwnClock clock;
    Engines launcher;
    EngineSurroundings& surroundings;
    NotificationCentre centre;
    Banners banners;
    Notifier notifier { banners, centre, surroundings.defaults, clock, [] {
                       } };
    EngineManager engine;
    DraftDelivery delivery { engine.db(), engine, clock };
    RecordedCalls calls { engine.db() };
    ApprovalsStore approvals { centre, notifier, clock };
};

class Gate : public testing::Test {
protected:
    static constexpr int steps = 8; ///< per seed

    struct Draft {
        std::optional<Content> approval; ///< by a person, or kept after an engine refused it; only while "approved"
        bool approvedElsewhere = false;
        struct Armed {
            size_t copy;
            qint64 dueMs;
            Content seen;
        };
        QList<Armed> armed;
    };

    Gate()
    {
        QDir().mkpath(engineDir(world.home.paths()));
        for (size_t i = 0; i < copies.size(); ++i)
            boot(i);
        other->exec(u"PRAGMA synchronous=OFF; PRAGMA busy_timeout=0;"_s);
        ensureConversation(*other, u"WHATSAPP"_s, u"shop"_s, u"a"_s, u"Ana"_s, 1);
    }

    void boot(size_t which)
    {
        copies[which].reset();
        for (Draft& draft : drafts)
            draft.armed.removeIf([&](const Draft::Armed& armed) { return armed.copy == which; });
        copies[which]
            = std::make_unique<Copy>(world, [this, which](const QString& account, const QJsonObject& command) {
                  return reach(which, account, command);
              });
        DraftDelivery& delivery = copies[which]->delivery;
        QObject::connect(&delivery, &DraftDelivery::returned, &delivery, [this] { ++returned; });
    }

    int roll(int sides) { return int(chance() % unsigned(sides)); }
    QString word() { return QString(QChar(u'a' + roll(3))); }
    std::optional<PendingDraft> row(const QString& id) { return fetchDraft(*other, id); }

    bool isStill(const QString& id, const QStringList& statuses)
    {
        const auto now = row(id);
        return now && statuses.contains(now->status);
    }

    /// Called when a text reaches an engine. Checks the property under test.
    bool reach(size_t which, const QString& account, const QJsonObject& command)
    {
        const QString id = command.value(u"draftId"_s).toString();
        Draft& draft = drafts[id];
        const Content content { account, row(id).value_or(PendingDraft()).channel,
            command.value(u"chatId"_s).toString(), command.value(u"text"_s).toString() };
        const bool allowed = draft.approval ? *draft.approval == content : draft.approvedElsewhere;
        EXPECT_TRUE(allowed) << "seed " << seed << ", " << qPrintable(id) << ": \"" << qPrintable(content.text)
                             << "\" to " << qPrintable(content.recipient) << " on " << qPrintable(account) << " after\n"
                             << qPrintable(story.join(u'\n'));
        draft.approvedElsewhere = false;
        draft.approval.reset();
        if (crashAtDoor == 1) {
            crashAtDoor = 0;
            throw Crash { which };
        }
        if (refusing) {
            draft.approval = content;
            return false;
        }
        ++sent;
        if (crashAtDoor == 2) {
            crashAtDoor = 0;
            throw Crash { which };
        }
        return true;
    }

    /// A person's approval counts only if the row is still waiting and has the content that the person saw.
    void approvalCounts(const QString& id, const Content& seen)
    {
        const auto now = row(id);
        if (now && (now->status == u"pending" || now->status == u"failed") && contentOf(*now) == seen)
            drafts[id].approval = seen;
    }

    /// Drops the approvals of drafts that are not "approved".
    void settle()
    {
        const QStringList approved = other->rows(u"SELECT id FROM outbound_draft WHERE status='approved';"_s, {},
            [](const SqlRow& each) { return each.text(0); });
        for (auto draft = drafts.begin(); draft != drafts.end(); ++draft) {
            if (!approved.contains(draft.key())) {
                draft->approval.reset();
                draft->approvedElsewhere = false;
            }
        }
    }

    /// Another process changes the row. This fails while a copy has locked the database.
    void writeElsewhere(const QString& id)
    {
        const int what = roll(8);
        const auto before = row(id);
        if (!before)
            return;
        const bool waiting = before->status == u"pending" || before->status == u"failed";
        const auto set = [&](const QString& column, const QString& value) {
            story.append(u"  elsewhere %1=%2 of %3"_s.arg(column, value, id));
            return other->changedRows(u"UPDATE outbound_draft SET %1=? WHERE id=?;"_s.arg(column), { value, id }) == 1;
        };
        if (what < 3) {
            set(u"body"_s, word());
        } else if (what == 3) {
            set(u"external_id"_s, word());
        } else if (what == 4) {
            set(u"account_id"_s, accounts().at(roll(2)).slug);
        } else if (what == 5 && waiting) {
            if (set(u"status"_s, u"approved"_s))
                drafts[id].approvedElsewhere = true;
        } else if (what == 6 && (waiting || before->status == u"approved")) {
            if (set(u"status"_s, roll(2) ? u"rejected"_s : u"pending"_s)) {
                drafts[id].approval.reset();
                drafts[id].approvedElsewhere = false;
            }
        } else if (what == 7 && roll(4) == 0) {
            set(u"channel"_s, word());
        }
    }

    void act()
    {
        const size_t which = size_t(roll(2));
        Copy& copy = *copies[which];
        const QString id = ids.at(roll(int(ids.size())));
        const int what = roll(100);
        if (roll(5) == 0) {
            copy.clock.lookUntilStep = 1 + roll(8);
            if (roll(5) == 0)
                copy.clock.stepIn = [which] {
                    throw Crash { which };
                };
            else
                copy.clock.stepIn = [this, id] {
                    writeElsewhere(id);
                };
        }
        crashAtDoor = roll(40) == 0 ? 1 + roll(2) : 0;
        story.append(u"%1 on copy %2, draft %3, clock %4"_s.arg(
            QString::number(what), QString::number(which), id, QString::number(world.clock.nowMs())));
        try {
            actOn(copy, which, id, what);
        } catch (const Crash& crash) {
            ++crashes;
            story.append(u"  crash"_s);
            boot(crash.copy);
        }
        copies[which]->clock.stepIn = {};
        settle();
    }

    void actOn(Copy& copy, size_t which, const QString& id, int what)
    {
        Draft& draft = drafts[id];
        const QList<PendingDraft>& shown = copy.approvals.drafts();
        const auto listed = std::ranges::find(shown, id, &PendingDraft::id);
        const auto seen = listed != shown.end() ? std::optional(*listed) : row(id);
        const bool armedHere = copy.approvals.armed(draftKey(id)).has_value();
        const auto disarm = [&] {
            draft.armed.removeIf([&](const Draft::Armed& armed) { return armed.copy == which; });
        };
        if (what < 12) {
            copy.delivery.refresh();
        } else if (what < 16) {
            copy.approvals.refresh();
        } else if (what < 30 && seen) {
            lastDueMs = std::max(lastDueMs, world.clock.nowMs()) + 1;
            copy.approvals.decide(draftKey(id), Verdict::Approve, Milliseconds(lastDueMs - world.clock.nowMs()));
            if (!armedHere)
                draft.armed.append({ which, lastDueMs, contentOf(*seen) });
        } else if (what < 33) {
            disarm();
            copy.approvals.undo(draftKey(id));
        } else if (what < 36) {
            disarm();
            const bool canBe = isStill(id, { u"pending"_s, u"failed"_s, u"approved"_s });
            copy.centre.post(notifications::approvalAction, {},
                { { u"kind"_s, u"draft"_s }, { u"id"_s, id }, { u"action"_s, u"reject"_s } });
            EXPECT_TRUE(!canBe || isStill(id, { u"rejected"_s })) << "seed " << seed;
        } else if (what < 40) {
            disarm();
            (void)copy.approvals.saveDraftBody(id, word());
        } else if (what < 48 && copy.banners.told.contains(id)) {
            disarm();
            approvalCounts(id, copy.banners.told.value(id));
            copy.banners.press(id, u"NIMB_APPROVE"_s);
        } else if (what < 50 && copy.banners.told.contains(id)) {
            disarm();
            const bool canBe = isStill(id, { u"pending"_s, u"failed"_s, u"approved"_s });
            copy.banners.press(id, u"NIMB_REJECT"_s);
            EXPECT_TRUE(!canBe || isStill(id, { u"rejected"_s })) << "seed " << seed;
        } else if (what < 56 && seen && seen->accountId == accounts().first().slug) {
            approvalCounts(id, contentOf(*seen));
            returned += approveDraft(copy.engine.db(), seen->id, draftHash(*seen)) == Decided::Changed;
            copy.delivery.refresh();
        } else if (what < 74) {
            writeElsewhere(id);
        } else if (what < 82) {
            const QString status = QStringList { u"sent"_s, u"placed"_s, u"failed"_s, u"failed"_s }.at(roll(4));
            copy.engine.handleEvent(accounts().first().id,
                u"{\"type\":\"sendAck\",\"draftId\":\"%1\",\"status\":\"%2\"}"_s.arg(id, status), Speaker::Current);
        } else if (what < 86) {
            refusing = !refusing;
        } else if (what < 88) {
            other->run(u"UPDATE outbound_draft SET updated_at=updated_at-121000 WHERE status='sending';"_s);
            copy.delivery.refresh();
        } else {
            tick();
        }
    }

    /// Advances the clock by a millisecond. At most one undo window ends in it.
    void tick()
    {
        const qint64 now = world.clock.nowMs() + 1;
        for (auto draft = drafts.begin(); draft != drafts.end(); ++draft) {
            const auto armed = std::ranges::find(draft->armed, now, &Draft::Armed::dueMs);
            if (armed == draft->armed.end())
                continue;
            approvalCounts(draft.key(), armed->seen);
            draft->armed.erase(armed);
        }
        world.clock.advance(Milliseconds(1));
    }

    void live(unsigned which)
    {
        seed = which;
        chance.seed(which);
        story.clear();
        ids.clear();
        refusing = false;
        for (int i = 0; i < 2; ++i) {
            ids.append(u"od:%1:%2"_s.arg(which).arg(i));
            drafts[ids.last()] = {};
            other->run(
                u"INSERT INTO outbound_draft(id, workspace_id, conversation_id, channel, account_id, external_id, "
                "body, status, created_at, updated_at) VALUES(?,'local','c','WHATSAPP','shop','a','a','pending',?,?);"_s,
                { ids.last(), world.clock.nowMs(), world.clock.nowMs() });
        }
        copies[which % 2]->delivery.refresh();
        copies[which % 2]->approvals.refresh();
        for (int i = 0; i < steps && !HasFailure(); ++i)
            act();
        for (const QString& id : std::as_const(ids)) {
            for (const auto& copy : copies)
                copy->approvals.undo(draftKey(id));
        }
        other->exec(u"DELETE FROM outbound_draft; DELETE FROM draft_approval;"_s);
        drafts.clear();
    }

    EngineSurroundings world;
    std::array<std::unique_ptr<Copy>, 2> copies;
    std::unique_ptr<LocalDB> other = world.openDatabase(world.clock);
    QHash<QString, Draft> drafts;
    QStringList ids;
    std::mt19937 chance;
    unsigned seed = 0;
    QStringList story;
    qint64 lastDueMs = 0;
    LogCapture logs;
    bool refusing = false;
    int crashAtDoor = 0; ///< 1: before the engine takes the text, 2: after
    int sent = 0;
    int returned = 0;
    int crashes = 0;
};

unsigned number(const char* variable, unsigned otherwise)
{
    bool given = false;
    const int value = qEnvironmentVariableIntValue(variable, &given);
    return given ? unsigned(value) : otherwise;
}

}

TEST_F(Gate, noTextReachesAnEngineWithoutALiveApprovalOfExactlyThatText)
{
    const unsigned first = number("CORVANE_GATE_FIRST", 1);
    const unsigned count = number("CORVANE_GATE_SEEDS", 2000);
    for (unsigned i = 0; i < count && !HasFailure(); ++i)
        live(first + i);
    const RecordCheck check = checkRecords(*other);
    EXPECT_TRUE(check.sound) << qPrintable(check.words);
    std::printf("%u orders: %d texts sent, %d returned, %d crashes\n", count, sent, returned, crashes);
    if (count < 1000)
        return;
    EXPECT_GT(sent, int(count) / 10) << "the gate lets approved texts through";
    EXPECT_GT(returned, int(count) / 100);
    EXPECT_GT(crashes, int(count) / 50);
}
