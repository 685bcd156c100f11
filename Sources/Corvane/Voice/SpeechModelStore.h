#pragma once

#include "Voice/SpeechModelSpec.h"

#include <QList>
#include <QObject>

namespace corvane {

class Scheduler;
class UserDefaults;

/// The installed models: the files on disk and a list of them. A model in the list without its file is not installed.
class SpeechModelStore : public QObject {
    Q_OBJECT
public:
    /// The user default with the id of the preferred model.
    static constexpr const char* preferredModelKey = "Corvane.speech.preferredModel";

    /// The references outlive the store. The folder is "Models/Speech" in `applicationSupport`.
    SpeechModelStore(
        const QString& applicationSupport, UserDefaults& defaults, Scheduler& scheduler, QObject* parent = nullptr);

    const QString& modelsRoot() const { return m_root; }
    const QList<SpeechInstalledModel>& installed() const { return m_installed; }

    void refresh(); ///< reads the folder again, and creates it if it is missing

    SpeechModelSpec preferredModel() const; ///< the basic recogniser if no model is installed
    void prefer(const SpeechModelSpec& spec);
    std::optional<SpeechInstalledModel> installedModel(const SpeechModelSpec& spec) const;
    void markUsed(const SpeechModelSpec& spec);

    void add(const SpeechInstalledModel& model); ///< replaces one with the same id; becomes the preferred one
    void remove(const SpeechModelSpec& spec); ///< deletes its file

Q_SIGNALS:
    void changed();

private:
    void save();

    const QString m_root;
    UserDefaults& m_defaults;
    Scheduler& m_scheduler;
    QList<SpeechInstalledModel> m_installed; ///< without the basic recogniser
};

}
