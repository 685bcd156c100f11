#pragma once

#include "AI/LocalAIAvailability.h"
#include "Foundation/Cancellation.h"
#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Store/People/ContactInfo.h"

#include <QObject>
#include <QPointer>
#include <qcoro/qcorotask.h>

namespace corvane {

class LocalDB;
class UserDefaults;
struct AIServices;

/// A backend that can answer.
class AssistantBackend {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString stateText MEMBER stateText)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString detail MEMBER detail)
public:
    QString name;
    QString stateText;
    QString kind; ///< "good" or "idle"
    QString detail;

    bool operator==(const AssistantBackend&) const = default;
};

/// A fact about this machine.
class MachineFact {
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString value MEMBER value)
public:
    QString label;
    QString value;

    bool operator==(const MachineFact&) const = default;
};

/// A memory of the assistant.
class MemoryLine {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString scope MEMBER scope)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString heading MEMBER heading)
public:
    QString id;
    QString scope;
    QString body;
    QString heading; ///< the scope, on its first line

    bool operator==(const MemoryLine&) const = default;
};

/// The assistant's settings: which backend answers and why the other does not, the local model, whether this machine
/// may do heavy work, and the stored memory.
class AssistantSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString answersText READ answersText NOTIFY changed)
    Q_PROPERTY(bool available READ available NOTIFY changed)
    Q_PROPERTY(QList<corvane::AssistantBackend> backends READ backends NOTIFY changed)
    Q_PROPERTY(QStringList models READ models NOTIFY choiceChanged)
    Q_PROPERTY(QString model READ model WRITE setModel NOTIFY choiceChanged) ///< empty: the first available one
    Q_PROPERTY(QString modelText READ modelText NOTIFY choiceChanged)
    Q_PROPERTY(QString firstModelLabel READ firstModelLabel CONSTANT)
    Q_PROPERTY(QString elsewhereText READ elsewhereText NOTIFY changed) ///< empty: the model runs on this machine
    Q_PROPERTY(bool elsewhereAllowed READ elsewhereAllowed NOTIFY changed)
    Q_PROPERTY(QString serverUrl READ serverUrl WRITE setServerUrl NOTIFY choiceChanged) ///< empty: the default ports
    Q_PROPERTY(QString gateText READ gateText NOTIFY changed)
    Q_PROPERTY(bool gateIsOpen READ gateIsOpen NOTIFY changed)
    Q_PROPERTY(QList<corvane::MachineFact> gateFacts READ gateFacts NOTIFY changed)
    Q_PROPERTY(bool trying READ trying NOTIFY tryChanged)
    Q_PROPERTY(QString tryText READ tryText NOTIFY tryChanged) ///< the progress or result
    Q_PROPERTY(QString tryKind READ tryKind NOTIFY tryChanged) ///< "idle", "busy", "good" or "bad"
    Q_PROPERTY(QList<corvane::MemoryLine> memory READ memory NOTIFY memoryChanged)
    Q_PROPERTY(QString memoryEmptyText READ memoryEmptyText CONSTANT)
    Q_PROPERTY(QString forgottenText READ forgottenText NOTIFY memoryChanged) ///< empty: nothing to restore
public:
    /// All of it outlives the view model.
    AssistantSettings(
        AIServices& services, UserDefaults& defaults, LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);
    ~AssistantSettings() override; ///< cancels a running test

    QString answersText() const;
    bool available() const;
    QList<AssistantBackend> backends() const;
    QStringList models() const;
    QString model() const;
    void setModel(const QString& model);
    QString modelText() const;
    QString firstModelLabel() const { return u"First available"_s; }
    QString elsewhereText() const;
    bool elsewhereAllowed() const;
    QString serverUrl() const;
    void setServerUrl(const QString& url);
    QString gateText() const { return m_gate.statusText(); }
    bool gateIsOpen() const { return !m_gate.stopCondition; }
    QList<MachineFact> gateFacts() const;
    bool trying() const { return m_trying; }
    const QString& tryText() const { return m_tryText; }
    const QString& tryKind() const { return m_tryKind; }
    const QList<MemoryLine>& memory() const { return m_memory; }
    QString memoryEmptyText() const;
    QString forgottenText() const;

    /// While visible, changing values are read every few seconds.
    void setVisible(bool visible);

    Q_INVOKABLE void allowElsewhere(bool allow); ///< the model that would answer may process texts on another machine
    Q_INVOKABLE void tryIt(); ///< asks the current backend for one sentence
    Q_INVOKABLE void cancelTry();
    Q_INVOKABLE void forget(const QString& memoryId);
    Q_INVOKABLE void keepForgotten(); ///< undoes the last `forget`

Q_SIGNALS:
    void changed();
    void choiceChanged(); ///< also the list of models
    void tryChanged();
    void memoryChanged();

private:
    static QCoro::Task<> ask(QPointer<AssistantSettings> self, CancelHandle cancel);
    void setTry(bool trying, const QString& kind, const QString& text);
    void showProgress();
    void look();
    void readMemory();

    AIServices& m_services;
    UserDefaults& m_defaults;
    LocalDB& m_db;
    Scheduler& m_scheduler;
    LocalAIAvailabilitySnapshot m_gate;
    std::unique_ptr<Timer> m_refresh;
    std::unique_ptr<Timer> m_progress;
    CancelHandle m_cancel;
    qint64 m_triedAtMs = 0;
    bool m_trying = false;
    QString m_tryText;
    QString m_tryKind = u"idle"_s;
    QList<MemoryLine> m_memory;
    std::optional<ForgottenMemory> m_forgotten;
};

}
