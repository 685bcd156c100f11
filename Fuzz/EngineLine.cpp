// Whatever an engine prints, the next line that is well-formed is handled.

#include "Platform/Linux/Processes/Utf8Chunks.h"
#include "Support/PlayedEngine.h"
#include "Support/VirtualScheduler.h"

using namespace corvane;

namespace {

struct World {
    World()
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { });
    }

    /// One chunk, and every event in it is handled.
    void print(const QString& chunk)
    {
        engine.print(chunk);
        clock.advance(Milliseconds(1));
    }

    VirtualScheduler clock;
    PlayedEngine engine { clock, QStringLiteral(":memory:") };
};

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static World world;
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    const qsizetype chunk = size == 0 ? 1 : data[0] + 1;
    Utf8Chunks text;
    for (qsizetype from = 0; from < bytes.size(); from += chunk)
        world.print(text.take(bytes.sliced(from, std::min(chunk, bytes.size() - from))));
    world.print(QStringLiteral("\n@@CORVANE@@{\"type\":\"log\",\"msg\":\"still here\"}\n"));
    const RuntimeState state = world.engine.engines().runtime(world.engine.account().id);
    if (state.lastLog != QStringLiteral("still here"))
        std::abort();
    return 0;
}
