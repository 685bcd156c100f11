#include "Engines/EngineLines.h"
#include "Support/Print.h"
#include "Support/VirtualScheduler.h"

#include <gtest/gtest.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

class EngineLinesTest : public testing::Test {
protected:
    std::shared_ptr<EngineStream> open(const QString& name, const QString& head = {})
    {
        return lines.open(head, [this, name](const QString& event) { seen.append(name + event); });
    }

    static OutputChunk chunk(const QString& text) { return { text, std::make_shared<int>() }; }

    VirtualScheduler clock;
    EngineLines lines { clock };
    QStringList seen;
};

}

TEST_F(EngineLinesTest, anEventIsWhatStandsBehindTheFirstSentinelOfALine)
{
    const auto stream = open(QString());
    stream->append(chunk(u"free text\nnoise@@CORVANE@@{a}\n@@CORVANE@@{b@@CORVANE@@c}\r\n\n@@CORVANE@@\n@@CORVANE"_s));
    stream->append(chunk(u"@@{spl"_s));
    stream->append(chunk(u"it"_s));
    stream->append(chunk(u"}\nrest"_s));
    clock.advance(Milliseconds(1));
    EXPECT_EQ(seen, QStringList({ u"{a}"_s, u"{b@@CORVANE@@c}\r"_s, QString(), u"{split}"_s }));
}

TEST_F(EngineLinesTest, aTurnOfTheLoopHandlesFewEventsAndOneOfEachEngineInTurn)
{
    const auto flooding = open(u"f"_s);
    const auto quiet = open(u"q"_s);
    QString flood;
    for (int i = 0; i < 30; ++i)
        flood += u"@@CORVANE@@%1\n"_s.arg(i);
    OutputChunk held = chunk(flood);
    const std::weak_ptr<void> hold = held.hold;
    flooding->append(std::exchange(held, {}));
    quiet->append(chunk(u"@@CORVANE@@0\n@@CORVANE@@1\n"_s));
    EXPECT_TRUE(seen.isEmpty());

    clock.runDue();
    EXPECT_EQ(seen, QStringList({ u"f0"_s, u"q0"_s, u"f1"_s, u"q1"_s, u"f2"_s, u"f3"_s, u"f4"_s, u"f5"_s }));
    clock.runDue();
    clock.runDue();
    EXPECT_EQ(seen.size(), 24);
    EXPECT_FALSE(hold.expired()) << "the engine is not read on before its events are handled";
    clock.runDue();
    EXPECT_EQ(seen.size(), 32);
    EXPECT_TRUE(hold.expired());
    EXPECT_EQ(clock.pendingTimers(), 0);
}

TEST_F(EngineLinesTest, aTurnIsShorterWhereEachEventTakesLong)
{
    int handled = 0;
    const auto slow = lines.open({}, [&](const QString&) {
        ++handled;
        clock.setNowMs(clock.nowMs() + 5);
    });
    slow->append(chunk(u"@@CORVANE@@\n"_s.repeated(5)));
    clock.runDue();
    EXPECT_EQ(handled, 2);
    clock.advance(seconds(1));
    EXPECT_EQ(handled, 5);
}

TEST_F(EngineLinesTest, textThatHoldsNoEventIsLetGoAtOnce)
{
    const auto stream = open(QString());
    OutputChunk noise = chunk(u"one\ntwo\nhalf"_s);
    const std::weak_ptr<void> hold = noise.hold;
    stream->append(std::exchange(noise, {}));
    EXPECT_TRUE(hold.expired());
    EXPECT_EQ(clock.pendingTimers(), 0);
}

TEST_F(EngineLinesTest, anEndWaitsForTheEventsBeforeItAndGivesTheRest)
{
    const auto stream = open(u"a"_s, u"@@CORVANE@@he"_s);
    stream->append(chunk(u"ad\n@@CORVANE@@last\nrest"_s));
    QString rest;
    stream->close([&](const QString& text) {
        EXPECT_EQ(seen, QStringList({ u"ahead"_s, u"alast"_s }));
        rest = text;
    });
    EXPECT_TRUE(rest.isEmpty());
    clock.advance(Milliseconds(1));
    EXPECT_EQ(rest, u"rest"_s);
}
