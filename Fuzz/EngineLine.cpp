// Whatever an engine prints, the next line that is well-formed is handled.

#include "FuzzEngine.h"
#include "Platform/Linux/Utf8Chunks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static corvane::FuzzEngine engine;
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    const qsizetype chunk = size == 0 ? 1 : data[0] + 1;
    corvane::Utf8Chunks text;
    for (qsizetype from = 0; from < bytes.size(); from += chunk)
        engine.print(text.take(bytes.sliced(from, std::min(chunk, bytes.size() - from))));
    engine.print(QStringLiteral("\n@@CORVANE@@{\"type\":\"log\",\"msg\":\"still here\"}\n"));
    if (engine.lastLog() != QStringLiteral("still here"))
        std::abort();
    return 0;
}
