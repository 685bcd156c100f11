// Fuzzes model answers: no accepted draft may lack a text or claim to have been sent, and every draft is grounded in
// itself.

#include "AI/DraftAnswer.h"
#include "AI/UngroundedFacts.h"

#include <cstdlib>

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    const QString answer = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto response = parseDraftAnswer(answer, { "draft_reply", "warm", { "M1" }, quotedFacts(answer).mid(0, 1) });
    if (!response)
        return 0;
    const bool passes = !response->draft.trimmed().isEmpty() && !response->metadata.sendSideEffect
        && response->metadata.confidence >= 0 && response->metadata.confidence <= 1
        && ungroundedFacts(response->draft, response->draft).isEmpty();
    if (!passes)
        std::abort();
    return 0;
}
