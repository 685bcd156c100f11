#pragma once

#include "Child.h"
#include "Engine.h"

#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Store/Core/LocalDB.h"

#include <QTemporaryDir>

class QProcessEnvironment;

namespace corvane::torture {

/// A temporary profile with one account, a simulated engine and the real program.
class Profile {
public:
    /// Located in memory if possible, since a kill loses nothing that the kernel already has. `program` is the path to
    /// Corvane; if empty, this process hosts it.
    explicit Profile(const QString& program);
    ~Profile();

    const AppPaths& paths() const { return m_paths; }
    QString file(const QString& name) const { return m_folder.filePath(name); }
    const EngineBooks& books() const { return m_books; }

    enum class Deciding { Nobody, Person }; ///< who decides on drafts; a person needs a hosted program
    void start(const EngineOrders& orders, Deciding deciding = Deciding::Nobody); ///< `corvane --headless`
    bool isRunning() const { return m_program.isRunning(); }
    qint64 processId() const { return m_program.processId(); }
    void kill() { m_program.kill(); }
    bool stop(); ///< quits it once its engine has started; false if it failed or had to be killed

    /// Starts one of the program's commands alongside it.
    std::unique_ptr<Child> command(const QStringList& arguments);
    int run(const QStringList& arguments); ///< waits for its end and returns the exit code

    /// Opens the database as another process.
    std::unique_ptr<LocalDB> open();

    /// The rows of messages numbered up to `upTo`, and how many different messages they contain.
    struct Told {
        qint64 rows = 0;
        qint64 messages = 0;
    };
    Told told(LocalDB& db, qint64 upTo) const;

private:
    QProcessEnvironment environment() const;

    QString m_binary;
    QTemporaryDir m_folder;
    AppPaths m_paths;
    EngineBooks m_books;
    SystemScheduler m_scheduler;
    UserDefaults m_defaults;
    NotificationCentre m_centre;
    Child m_program;
    qsizetype m_earlierLives = 0; ///< of the engine
};

extern const QString account; ///< the account's slug

/// Waits until the condition is true; returns false after `seconds`.
bool waitFor(const std::function<bool()>& condition, int seconds = 60);
void pause(int milliseconds);

}
