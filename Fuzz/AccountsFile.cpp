// Fuzzes the accounts file: it decodes completely or not at all, and re-encoding it gives the same accounts.

#include "Engines/AccountStore.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto accounts
        = corvane::decodeAccounts(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (accounts && corvane::decodeAccounts(corvane::encodeAccounts(*accounts)) != accounts)
        std::abort();
    return 0;
}
