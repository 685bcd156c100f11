// An accounts file decodes whole or not at all, and what was decoded is written so that it reads back the same.

#include "Engines/AccountStore.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto accounts
        = corvane::decodeAccounts(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (accounts && corvane::decodeAccounts(corvane::encodeAccounts(*accounts)) != accounts)
        std::abort();
    return 0;
}
