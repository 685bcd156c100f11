#pragma once

#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

class AccountStore;
class BackgroundQueue;
class EngineManager;
struct AppPaths;
struct KeptBackup;
struct SalvageProgress;

/// A way to replace a corrupt database.
class RecoveryChoice {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString hint MEMBER hint)
public:
    QString id;
    QString label;
    QString hint;

    bool operator==(const RecoveryChoice&) const = default;
};

/// Handles a corrupt database: stops the engines and the tool server, moves the file aside, and lets the user choose
/// its replacement. Output of the engines waits meanwhile. Also continues after a restart that interrupted the choice.
class StoreRecovery : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool needed READ needed NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString explanation READ explanation NOTIFY changed)
    Q_PROPERTY(QList<corvane::RecoveryChoice> choices READ choices NOTIFY changed) ///< `choose` takes the id
    Q_PROPERTY(QString progressText READ progressText NOTIFY progressed) ///< while busy
    Q_PROPERTY(double progress READ progress NOTIFY progressed) ///< 0 to 1, while busy
    Q_PROPERTY(QString error READ error NOTIFY changed) ///< why the last choice failed; usually empty
public:
    struct Surroundings {
        EngineManager& engine;
        AccountStore& accounts;
        BackgroundQueue& background;
        Scheduler& scheduler;
        const AppPaths& paths;
    };

    explicit StoreRecovery(const Surroundings& surroundings, QObject* parent = nullptr);
    ~StoreRecovery() override;

    bool needed() const { return m_step != Step::None; }
    bool busy() const { return m_step == Step::Stopping || m_step == Step::Copying; }
    QString title() const { return u"The database is damaged"_s; }
    QString explanation() const;
    QList<RecoveryChoice> choices() const;
    QString progressText() const;
    double progress() const;
    const QString& error() const { return m_error; }

    /// "save", "backup", "new", or "retry"; does nothing if it is not offered.
    Q_INVOKABLE void choose(const QString& id);

Q_SIGNALS:
    void changed();
    void progressed();
    void recovered(); ///< a valid file is open, and everything may start again

private:
    enum class Source { Damaged, Backup };
    enum class Step { None, Stopping, Stuck, Choosing, Copying };

    void notice();
    void stopEngines();
    void setAside();
    void copy(const QString& from, Source source);
    bool makeEmpty(); ///< a new file, not yet at its final path
    void putInPlace();
    void set(Step step, const QString& error = {});
    QString newFile() const;
    std::optional<KeptBackup> latestBackup() const;

    Surroundings m_at;
    Step m_step = Step::None;
    QString m_aside; ///< the corrupt file
    QString m_error;
    QStringList m_stopped; ///< the slugs of the accounts whose engines were running
    std::shared_ptr<SalvageProgress> m_progress;
    std::unique_ptr<Timer> m_timer;
};

}
