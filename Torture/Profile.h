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

/// A profile of its own with one account, whose engine is played, and the real program on it.
class Profile {
public:
    /// In memory if the machine has room there: a kill takes nothing from the kernel. `program` is Corvane; empty for
    /// the one that this process hosts.
    explicit Profile(const QString& program);
    ~Profile();

    const AppPaths& paths() const { return m_paths; }
    QString file(const QString& name) const { return m_folder.filePath(name); }
    const EngineBooks& books() const { return m_books; }

    enum class Deciding { Nobody, Person }; ///< on drafts; a person needs a hosted program
    void start(const EngineOrders& orders, Deciding deciding = Deciding::Nobody); ///< `corvane --headless`
    bool isRunning() const { return m_program.isRunning(); }
    qint64 processId() const { return m_program.processId(); }
    void kill() { m_program.kill(); }
    bool stop(); ///< as a person would, once it has started its engine; false if it had to be killed

    /// A command of the program beside it, as it is started.
    std::unique_ptr<Child> command(const QStringList& arguments);
    int run(const QStringList& arguments); ///< to its end; the exit code

    /// The database, as another program has it.
    std::unique_ptr<LocalDB> open();

    /// Rows of the messages whose numbers are at most `upTo`, and how many different ones they are.
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

extern const QString account; ///< its slug

/// Until it is true, for at most `seconds`; false otherwise.
bool waitFor(const std::function<bool()>& condition, int seconds = 60);
void pause(int milliseconds);

}
