#pragma once

#include "Presentation/Choice.h"

namespace corvane {

class AccountStore;
class ContentView;
class Keychain;
class SessionStore;
class StoreHealth;
enum class StoreFault;
struct AppPaths;
struct CalendarServices;

/// A notice.
class Notice {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString tone MEMBER tone)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QList<corvane::Choice> actions MEMBER actions)
public:
    QString id;
    QString tone; ///< "bad", "warn" or "plain"
    QString text;
    QList<Choice> actions; ///< at most two

    bool operator==(const Notice&) const = default;
};

/// The problem with the database and its remedy; empty if there is none, or if the file must be replaced.
QString describe(StoreFault fault, const AppPaths& paths);

/// What the user must know on every screen: each notice disappears with its cause.
class Notices : public QObject {
    Q_OBJECT
    /// The most urgent first; `perform` takes the ids of a notice and of its action.
    Q_PROPERTY(QList<corvane::Notice> items READ items NOTIFY changed)
public:
    struct Surroundings {
        StoreHealth& health;
        Keychain& keychain;
        SessionStore& session;
        AccountStore& accounts;
        ContentView& content;
        const AppPaths& paths;
        CalendarServices& calendar;
    };

    explicit Notices(const Surroundings& surroundings, QObject* parent = nullptr);

    QList<Notice> items() const;
    Q_INVOKABLE void perform(const QString& id, const QString& action);

Q_SIGNALS:
    void calendarRequested(); ///< show the calendar
    void changed();

private:
    void answerReminder(bool prepares);
    bool accountsWait() const; ///< for a locked keyring

    Surroundings m_at;
};

}
