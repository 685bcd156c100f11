#pragma once

#include "Engines/AccountStore.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/FakeLanguageModel.h"
#include "Support/Print.h"
#include "Support/RealVoice.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

inline const QString ana = "ct:WHATSAPP:49171@s.whatsapp.net";
inline const QString ben = "ct:WHATSAPP:49172@s.whatsapp.net";

/// The view with a real database and an engine that the test simulates.
class InboxViewTest : public testing::Test, protected EngineWorld {
protected:
    InboxViewTest()
    {
        engines.setAccounts(&accounts);
        launcher.expect(FakeLauncher::stays());
        engines.start(account);
        engine().printEvent({ { "type", "status" }, { "state", "open" } });
        settle();
        // Stands in for the window, scrolled to the newest message.
        QObject::connect(inbox.person()->thread(), &ThreadView::changed,
            [this] { inbox.person()->thread()->reading()->setNewestInSight(!inbox.person()->thread()->hasNewer()); });
        inbox.appear();
    }

    FakeChild& engine() const { return launcher.last(); }

    void stopEngine()
    {
        engines.stop(account);
        engine().exit();
        settle();
    }

    void restartEngine()
    {
        launcher.expect(FakeLauncher::stays());
        engines.start(account);
        engine().printEvent({ { "type", "status" }, { "state", "open" } });
        settle();
    }

    void receive(const QString& from, const QString& body, QJsonObject more = {})
    {
        more.insert("type", "message");
        more.insert("convExternalId", from.section(':', 2));
        more.insert("body", body);
        more.insert("providerMsgId", u"m%1"_s.arg(++m_messages));
        if (from == ana || from == ben)
            more.insert("convTitle", from == ana ? "Ana Ruiz" : "Ben");
        if (!more.contains("ts"))
            more.insert("ts", clock.nowMs());
        engine().printEvent(more);
        clock.advance(Milliseconds(110));
    }

    /// Inserts older messages, a second apart, directly into the database.
    void rememberFrom(const QString& contact, int count)
    {
        engines.db().run(R"(WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?)
INSERT INTO unified_message(id, conversation_id, body, ts)
SELECT 'old' || i, (SELECT id FROM unified_conversation WHERE contact_id=?), 'old ' || i, ? - (? - i) * 1000 FROM n;)",
            { count, contact, clock.nowMs() - 86'400'000, count });
    }

    /// Waits until the open thread counts as read.
    void restInThread() { clock.advance(seconds(1)); }

    void receiveFromAnaAndBen()
    {
        receive(ana, "hello");
        receive(ben, "good day");
    }

    QStringList column(QAbstractItemModel* model, const QByteArray& role) const
    {
        const int id = model->roleNames().key(role, -1);
        EXPECT_NE(id, -1) << role.constData();
        QStringList values;
        for (int row = 0; row < model->rowCount(); ++row)
            values.append(model->index(row, 0).data(id).toString());
        return values;
    }
    QStringList names() { return column(inbox.list()->contacts(), "name"); }
    QStringList bodies() { return column(inbox.person()->thread()->rows(), "body"); }

    QList<QString> commands(const QString& word) const
    {
        QList<QString> found;
        for (const QJsonObject& command : engine().commands()) {
            if (command.value("cmd") == word)
                found.append(compactJson(command));
        }
        return found;
    }

    int count(const QString& key)
    {
        for (const auto& tab : inbox.list()->tabs()) {
            if (tab.id == key)
                return tab.count;
        }
        return -1;
    }

    void type(const QString& text)
    {
        inbox.filters()->setSearch(text);
        clock.advance(Milliseconds(250));
        awaitHits();
    }

    /// Waits for the search, which runs on its own thread.
    void awaitHits()
    {
        EXPECT_TRUE(await([this] { return !inbox.list()->results()->pending(); }));
    }

    FakeLumo lumo { clock };
    RealVoice voice { lumo.machine, defaults, clock, home.paths().applicationSupport };
    AccountStore accounts { home.paths().applicationSupport };
    Account account = accounts.add("Main", Channel::WhatsApp);
    const Composer::Surroundings composing { engines, accounts, defaults, clock, microphone, desktop, voice.services,
        home.paths().applicationSupport };
    Reply reply { composing, lumo };
    InboxView inbox { { engines, accounts, defaults, centre, clock, desktop, player, voice.services }, reply };
    QAbstractItemModelTester contactTester { inbox.list()->contacts(),
        QAbstractItemModelTester::FailureReportingMode::Fatal };
    QAbstractItemModelTester hitTester { inbox.list()->results()->messages(),
        QAbstractItemModelTester::FailureReportingMode::Fatal };
    QAbstractItemModelTester threadTester { inbox.person()->thread()->rows(),
        QAbstractItemModelTester::FailureReportingMode::Fatal };

private:
    int m_messages = 0;
};

}
