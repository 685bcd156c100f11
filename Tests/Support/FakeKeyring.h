#pragma once

#include "Platform/Keyring.h"

#include <QList>
#include <utility>

namespace corvane {

/// An in-memory keyring. It answers at once, unless it is `silent`. If `failure` is set, every call fails.
class FakeKeyring final : public Keyring {
public:
    void readAll(Unlock unlock, Read read) override
    {
        answer(unlock, [this, read = std::move(read)] { failure ? read(std::unexpected(*failure)) : read(values); });
    }
    void write(const QString& account, const QString& value, Unlock unlock, Done done) override
    {
        answer(unlock, [this, account, value, done = std::move(done)] {
            if (!failure)
                values.insert(account, value);
            done(failure);
        });
    }
    void erase(const QString& account, Unlock unlock, Done done) override
    {
        answer(unlock, [this, account, done = std::move(done)] {
            if (!failure)
                values.remove(account);
            done(failure);
        });
    }

    /// Stops being silent and answers the waiting calls.
    void speak()
    {
        silent = false;
        const auto calls = std::exchange(m_waiting, {});
        for (const auto& call : calls)
            call();
    }

    Secrets values;
    std::optional<Failure> failure;
    bool silent = false;
    int asked = 0; ///< how often the user would have been asked to unlock it

private:
    void answer(Unlock unlock, std::function<void()> call)
    {
        asked += unlock == Unlock::Ask ? 1 : 0;
        silent ? m_waiting.append(std::move(call)) : call();
    }

    QList<std::function<void()>> m_waiting;
};

}
