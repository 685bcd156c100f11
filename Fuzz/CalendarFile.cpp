// Fuzzes calendar files: expanding a month takes bounded time, and each part of a file parses on its own.

#include "Platform/Linux/Calendar/IcsFile.h"
#include "Platform/Linux/Calendar/IcsText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr qint64 fromMs = 1'790'000'000'000;
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    if (const auto file = corvane::IcsFile::read(text, "Europe/Berlin"))
        file->entries(fromMs, fromMs + 31LL * 86'400'000);
    const corvane::IcsParts parts = corvane::icsParts(text);
    for (auto event = parts.events.keyBegin(); event != parts.events.keyEnd(); ++event) {
        if (corvane::icsParts(parts.file(*event)).events.size() != 1)
            std::abort();
    }
    return 0;
}
