#pragma once

#include <QObject>
#include <QVariantList>

namespace corvane {

class AccountStore;
class ContentView;
class Keychain;
class SessionStore;
class StoreHealth;
enum class StoreFault;
struct AppPaths;

/// What is wrong with the database, and what to do; empty where nothing is, or where another file is needed.
QString describe(StoreFault fault, const AppPaths& paths);

/// What a person needs to know on whatever screen: each notice goes when its cause does.
class Notices : public QObject {
    Q_OBJECT
    /// Of {id, tone, text, actions}, the most pressing first. The tone is "bad", "warn" or "plain"; the actions are of
    /// {id, label}, and `perform` takes both ids.
    Q_PROPERTY(QVariantList items READ items NOTIFY changed)
public:
    struct Surroundings {
        StoreHealth& health;
        Keychain& keychain;
        SessionStore& session;
        AccountStore& accounts;
        ContentView& content;
        const AppPaths& paths;
    };

    explicit Notices(const Surroundings& surroundings, QObject* parent = nullptr);

    QVariantList items() const;
    Q_INVOKABLE void perform(const QString& id, const QString& action);

Q_SIGNALS:
    void changed();

private:
    bool accountsWait() const; ///< for a locked keyring

    Surroundings m_at;
};

}
