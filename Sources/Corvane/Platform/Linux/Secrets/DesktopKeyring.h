#pragma once

#include "Platform/Keyring.h"

namespace corvane {

/// The desktop's Secret Service, through libsecret on its own thread. The thread waits as long as the service takes;
/// destroying this object does not wait for it.
class DesktopKeyring final : public Keyring {
public:
    DesktopKeyring();
    ~DesktopKeyring() override;

    void readAll(Unlock unlock, Read read) override;
    void write(const QString& account, const QString& value, Unlock unlock, Done done) override;
    void erase(const QString& account, Unlock unlock, Done done) override;

private:
    struct Worker;
    std::shared_ptr<Worker> m_worker; ///< shared with its thread
};

}
