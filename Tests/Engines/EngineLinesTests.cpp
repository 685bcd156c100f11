#include "Engines/EngineLines.h"
#include "Engines/LineGroup.h"
#include "Foundation/Literals.h"
#include "Support/StoreTest.h"

using namespace corvane;
namespace {

class EngineLinesTest : public StoreTest {
protected:
    std::shared_ptr<EngineStream> open(const QString& name)
    {
        return lines.open({ [this, name](const QJsonObject& event) {
            seen.append(name + event.value("n").toVariant().toString());
            return true;
        } });
    }

    static OutputChunk chunk(const QByteArray& text) { return { text, std::make_shared<int>() }; }

    static QByteArray numbered(int count)
    {
        QByteArray text;
        for (int i = 0; i < count; ++i)
            text += "@@CORVANE@@{\"n\":" + QByteArray::number(i) + "}\n";
        return text;
    }

    LineGroup group { StoreTest::open() };
    EngineLines lines { m_clock, group };
    QStringList seen;
};

}

TEST_F(EngineLinesTest, anEventIsTheObjectBehindTheFirstSentinelOfALine)
{
    const auto stream = open(QString());
    stream->append(chunk("free text\nnoise@@CORVANE@@{\"n\":1}\n@@CORVANE@@{\"n\":\"@@CORVANE@@2\"}\r\n\n"
                         "@@CORVANE@@\n@@CORVANE@@[]\n@@CORVANE@@{\"n\":\"\xff\"}\n@@CORVANE@@{\"n\":3}\n"));
    m_clock.advance(Milliseconds(1));
    EXPECT_EQ(seen, QStringList({ u"1"_s, u"@@CORVANE@@2"_s, u"3"_s }));
}

TEST_F(EngineLinesTest, aTurnOfTheLoopHandlesFewEventsAndOneOfEachEngineInTurn)
{
    const auto flooding = open(u"f"_s);
    const auto quiet = open(u"q"_s);
    OutputChunk held = chunk(numbered(150));
    const std::weak_ptr<void> hold = held.hold;
    flooding->append(std::exchange(held, {}));
    quiet->append(chunk(numbered(2)));
    EXPECT_TRUE(seen.isEmpty());

    m_clock.runDue();
    EXPECT_EQ(seen.first(6), QStringList({ u"f0"_s, u"q0"_s, u"f1"_s, u"q1"_s, u"f2"_s, u"f3"_s }));
    EXPECT_EQ(seen.size(), 64);
    m_clock.runDue();
    EXPECT_FALSE(hold.expired()) << "the engine is not read on before its events are handled";
    m_clock.runDue();
    EXPECT_EQ(seen.size(), 152);
    EXPECT_TRUE(hold.expired());
    EXPECT_EQ(m_clock.pendingTimers(), 0);
}

TEST_F(EngineLinesTest, aTurnIsShorterWhereEachEventTakesLong)
{
    int handled = 0;
    const auto slow = lines.open({ [&](const QJsonObject&) {
        ++handled;
        m_clock.setNowMs(m_clock.nowMs() + 5);
        return true;
    } });
    slow->append(chunk(numbered(5)));
    m_clock.runDue();
    EXPECT_EQ(handled, 2);
    m_clock.advance(seconds(1));
    EXPECT_EQ(handled, 5);
}

TEST_F(EngineLinesTest, textThatHoldsNoEventIsLetGoAtOnce)
{
    const auto stream = open(QString());
    OutputChunk noise = chunk("one\ntwo\n");
    const std::weak_ptr<void> hold = noise.hold;
    stream->append(std::exchange(noise, {}));
    EXPECT_TRUE(hold.expired());
    EXPECT_EQ(m_clock.pendingTimers(), 0);
}

TEST_F(EngineLinesTest, anEndWaitsForTheEventsBeforeIt)
{
    const auto stream = open(u"a"_s);
    stream->append(chunk(numbered(2)));
    bool ended = false;
    stream->close([&] {
        EXPECT_EQ(seen, QStringList({ u"a0"_s, u"a1"_s }));
        ended = true;
    });
    EXPECT_FALSE(ended);
    m_clock.advance(Milliseconds(1));
    EXPECT_TRUE(ended);
}
