// Fuzzes engine output: after any input, the next well-formed line is handled.

#include "Foundation/Literals.h"
#include "Platform/Linux/Processes/WholeLines.h"
#include "Support/PlayedEngine.h"
#include "Support/VirtualScheduler.h"

using namespace corvane;

namespace {

struct World {
    World()
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { });
    }

    /// Feeds one read of output, and handles every event whose line is complete.
    void print(QByteArrayView read)
    {
        engine.print(lines.take(read));
        clock.advance(Milliseconds(1));
    }

    WholeLines lines;
    VirtualScheduler clock;
    PlayedEngine engine { clock, u":memory:"_s };
};

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static World world;
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    const qsizetype chunk = size == 0 ? 1 : data[0] + 1;
    for (qsizetype from = 0; from < bytes.size(); from += chunk)
        world.print(bytes.sliced(from, std::min(chunk, bytes.size() - from)));
    world.print("\n@@CORVANE@@{\"type\":\"log\",\"msg\":\"still here\"}\n");
    const RuntimeState state = world.engine.engines().runtime(world.engine.account().id);
    if (state.lastLog != u"still here"_s)
        std::abort();
    return 0;
}
