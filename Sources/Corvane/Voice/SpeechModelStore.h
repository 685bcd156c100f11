#pragma once

#include "Voice/SpeechModelSpec.h"

#include <QList>
#include <QObject>

namespace corvane {

class Scheduler;
class UserDefaults;

/// The models that are there, on the disk and in a list beside them. What the list names and the disk does not hold
/// is not installed.
class SpeechModelStore : public QObject {
    Q_OBJECT
public:
    /// Under which the id of the chosen model is kept.
    static constexpr const char* preferredModelKey = "Corvane.speech.preferredModel";

    /// The references outlive the store. The folder is "Models/Speech" in `applicationSupport`.
    SpeechModelStore(
        const QString& applicationSupport, UserDefaults& defaults, Scheduler& scheduler, QObject* parent = nullptr);

    const QString& modelsRoot() const { return m_root; }
    const QList<SpeechInstalledModel>& installed() const { return m_installed; }

    void refresh(); ///< reads the folder again, and makes it where it is missing

    SpeechModelSpec preferredModel() const; ///< the basic recogniser where no model is installed
    void prefer(const SpeechModelSpec& spec);
    std::optional<SpeechInstalledModel> installedModel(const SpeechModelSpec& spec) const;
    void markUsed(const SpeechModelSpec& spec);

    void add(const SpeechInstalledModel& model); ///< in place of one with the same id; it is preferred from now on
    void remove(const SpeechModelSpec& spec); ///< with its file

Q_SIGNALS:
    void changed();

private:
    void save();

    const QString m_root;
    UserDefaults& m_defaults;
    Scheduler& m_scheduler;
    QList<SpeechInstalledModel> m_installed; ///< never the basic recogniser
};

}
