#pragma once

#include <QHash>
#include <QString>
#include <expected>
#include <functional>
#include <memory>
#include <optional>

namespace corvane {

/// The program's secrets in the desktop's keyring, by account. Each call returns at once; its answer arrives on the
/// calling thread, in the order of the calls, and may take as long as the user needs to unlock the keyring. Pending
/// answers are dropped when the keyring is destroyed.
class Keyring {
public:
    enum class Failure {
        Absent, ///< no keyring is running on this machine
        Locked, ///< the user did not unlock it, or was not asked
        Failed, ///< anything else, such as a service that does not answer
    };
    enum class Unlock { Ask, Never };
    using Secrets = QHash<QString, QString>;
    using Read = std::function<void(const std::expected<Secrets, Failure>&)>;
    using Done = std::function<void(const std::optional<Failure>&)>; ///< nothing: success

    virtual ~Keyring() = default;

    virtual void readAll(Unlock unlock, Read read) = 0; ///< changes nothing
    virtual void write(const QString& account, const QString& value, Unlock unlock, Done done) = 0;
    virtual void erase(const QString& account, Unlock unlock, Done done) = 0; ///< succeeds, too, if there is none
};

/// The desktop's Secret Service; with CORVANE_SECRETS=file a keyring that is always absent.
std::unique_ptr<Keyring> makeKeyring();

}
