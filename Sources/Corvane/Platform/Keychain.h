#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/Keyring.h"
#include "Platform/SecretFile.h"

#include <QObject>

namespace corvane {

/// The program's own secrets: in the desktop's keyring, or in a private file while the keyring does not accept them.
/// The newest value wins, wherever it is stored; values and removals reach the keyring once it answers. Nothing here
/// waits for the keyring. Main thread only.
class Keychain : public QObject {
    Q_OBJECT
public:
    /// Queries the keyring at once, and asks the user if it is locked. The references outlive the object.
    Keychain(Keyring& keyring, const QString& filePath, Scheduler& scheduler, QObject* parent = nullptr);
    ~Keychain() override;

    std::optional<QString> get(const QString& account) const; ///< white space around the value is trimmed
    bool isAwaited(const QString& account) const; ///< whether the keyring has yet to answer for it

    bool set(const QString& value, const QString& account); ///< false if it is only in memory
    void remove(const QString& account);

    bool isLocked() const { return m_state == State::Locked; }
    void unlock(); ///< asks the user again
    QString description() const; ///< where the secrets are, for the settings screen

Q_SIGNALS:
    void changed(); ///< the keyring answered or failed

private:
    enum class State { Asking, Answered, Locked, Absent, Failed };

    void ask(Keyring::Unlock unlock);
    void take(const Keyring::Secrets& secrets, Keyring::Unlock unlock);
    void fail(Keyring::Failure failure);
    void setState(State state);
    void hand(const QString& account, Keyring::Unlock unlock);
    void handed(const QString& account, const SecretPlace& place, const std::optional<Keyring::Failure>& failure);
    bool isUnsettled() const;
    void askLater();
    bool save();

    Keyring& m_keyring;
    const SecretFile m_file;
    Scheduler& m_scheduler;
    SecretPlaces m_places; ///< newer than the file's while `m_saving` runs
    Keyring::Secrets m_values; ///< as stored in the keyring
    bool m_isRead = false; ///< `m_values` is complete
    State m_state = State::Absent;
    int m_handing = 0; ///< calls to the keyring that have not been answered
    Milliseconds m_pause;
    std::unique_ptr<Timer> m_asking;
    std::unique_ptr<Timer> m_saving;
};

}
