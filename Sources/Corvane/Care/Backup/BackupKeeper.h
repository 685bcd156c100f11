#pragma once

#include "Care/Backup/Backup.h"
#include "Foundation/Scheduler.h"

#include <QObject>
#include <QUrl>

namespace corvane {

class BackgroundQueue;
class Desktop;
class UserDefaults;

/// A backup that the program made on schedule or on request.
struct KeptBackup {
    QString file;
    qint64 madeAtMs = 0;
    qint64 bytes = 0;
};

/// The folder of these backups.
QString backupFolder(const AppPaths& paths, const UserDefaults& defaults);

bool backsUpDaily(const UserDefaults& defaults);

/// Newest first.
QList<KeptBackup> keptBackups(const QString& folder);

/// Daily backups, of which the last seven are kept, and backups on request. They contain no passwords and tokens. The
/// view model of the settings card.
class BackupKeeper : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString label READ label CONSTANT)
    Q_PROPERTY(QString lastText READ lastText NOTIFY changed)
    Q_PROPERTY(bool daily READ daily WRITE setDaily NOTIFY changed)
    Q_PROPERTY(QString dailyLabel READ dailyLabel CONSTANT)
    Q_PROPERTY(QString dailyHint READ dailyHint CONSTANT)
    Q_PROPERTY(bool media READ media WRITE setMedia NOTIFY changed)
    Q_PROPERTY(QString mediaLabel READ mediaLabel CONSTANT)
    Q_PROPERTY(QString mediaHint READ mediaHint CONSTANT)
    Q_PROPERTY(QString folder READ folder NOTIFY changed)
    Q_PROPERTY(QString folderLabel READ folderLabel CONSTANT)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY progressed) ///< 0 to 1, while busy
    Q_PROPERTY(QString progressText READ progressText NOTIFY progressed)
    Q_PROPERTY(QString error READ error NOTIFY changed) ///< why the last one failed; mostly empty
public:
    /// All of it outlives the object.
    struct Surroundings {
        const AppPaths& paths;
        UserDefaults& defaults;
        Scheduler& scheduler;
        BackgroundQueue& background;
        Desktop& desktop;
    };

    explicit BackupKeeper(const Surroundings& surroundings, QObject* parent = nullptr);
    ~BackupKeeper() override;

    void start(); ///< from now on, checks once an hour whether a backup is due

    static QString label() { return u"Backups"_s; }
    QString lastText() const;
    bool daily() const;
    void setDaily(bool on);
    static QString dailyLabel() { return u"Back up every day"_s; }
    static QString dailyHint() { return u"The last seven are kept. Passwords and tokens are not in them."_s; }
    bool media() const; ///< a missing setting counts as on
    void setMedia(bool on);
    static QString mediaLabel() { return u"With media"_s; }
    static QString mediaHint() { return u"Pictures, files and recordings, which take most of the space."_s; }
    QString folder() const;
    static QString folderLabel() { return u"Folder"_s; }
    bool busy() const { return m_progress != nullptr; }
    double progress() const;
    QString progressText() const;
    const QString& error() const { return m_error; }

    Q_INVOKABLE void backUpNow();
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void chooseFolder();

Q_SIGNALS:
    void changed();
    void progressed();

private:
    void backUpIfDue();
    void end(const Result<Manifest>& made);

    const Surroundings m_at;
    std::shared_ptr<BackupProgress> m_progress; ///< while one is made
    QString m_error;
    std::unique_ptr<Timer> m_hourly;
    std::unique_ptr<Timer> m_ticks;
};

}
