#pragma once

// The machine shown in the images of tools/gallery: real where the program needs it, and the same in each run.

#include "Foundation/Literals.h"
#include "Sound.h"

#include "Foundation/Arrival.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/AddressBook.h"
#include "Platform/AudioPlayer.h"
#include "Platform/CalendarSource.h"
#include "Platform/Desktop.h"
#include "Platform/GlobalShortcuts.h"
#include "Platform/Keyring.h"
#include "Platform/MachineFacts.h"
#include "Platform/MediaDecoder.h"
#include "Platform/Microphone.h"
#include "Platform/NotificationService.h"
#include "Platform/PortHolders.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SleepInhibitor.h"
#include "Platform/SpeechRecogniser.h"
#include "Platform/SystemLanguageModel.h"
#include "Platform/TextInsertion.h"
#include "Platform/ToolRunner.h"
#include "Platform/Tray.h"
#include "Shell/CorvaneApp.h"

#include <QJsonArray>
#include <QRegularExpression>

namespace corvane {

/// A clock that stays at the demo's time; waits are real.
class StandingClock final : public Scheduler {
public:
    explicit StandingClock(qint64 nowMs)
        : m_nowMs(nowMs)
    {
    }
    qint64 nowMs() const override { return m_nowMs; }
    qint64 monotonicMs() const override { return m_system.monotonicMs(); }
    void move(Milliseconds by) { m_nowMs += by.count(); }
    void waitAtMost(Milliseconds longest) { m_longest = longest; } ///< caps the delay of timers from now on
    std::unique_ptr<Timer> after(Milliseconds delay, std::function<void()> callback) override
    {
        return m_system.after(std::min(delay, m_longest), std::move(callback));
    }
    std::unique_ptr<Timer> every(Milliseconds period, std::function<void()> callback) override
    {
        return m_system.every(period, std::move(callback));
    }

private:
    qint64 m_nowMs;
    Milliseconds m_longest = Milliseconds::max();
    SystemScheduler m_system;
};

/// A desktop with a given colour scheme and reduced motion.
class PictureDesktop final : public Desktop {
public:
    void openInBrowser(const QUrl&) override { }
    bool openFile(const QString&) override { return true; }
    bool openLink(const QUrl&) override { return true; }
    void chooseFiles(const QString&, QObject*, std::function<void(const Result<QList<QUrl>>&)>) override { }
    void chooseFolder(const QString&, QObject*, std::function<void(const Result<QList<QUrl>>&)>) override { }
    QString hostName() const override { return u"studio"_s; }
    void setBadge(int) override { }
    ColourScheme colourScheme() const override { return scheme; }
    bool prefersReducedMotion() const override { return true; }

    ColourScheme scheme = ColourScheme::Light;
};

/// A model that gives the answer an image needs; without one, requests wait until they are cancelled.
class PictureModel final : public SystemLanguageModel {
public:
    void choose(const Choice&) override { }
    std::optional<QString> unavailableReason() const override { return reason; }
    bool runsElsewhere() const override { return false; }
    QString modelName() const override { return u"llama3.2:3b"_s; }
    QString displayName() const override { return u"llama3.2:3b (Ollama)"_s; }
    QStringList models() const override { return { u"llama3.2:3b"_s, u"qwen2.5:7b"_s }; }
    QCoro::Task<> refresh() override { co_return; }

    QCoro::Task<Result<QString>> respond(QString, QString prompt, CancelHandle cancel) override
    {
        const Arrival<bool> over;
        const auto watch = cancel.onCancel([over] { over.arrive(true); });
        if (says.isEmpty())
            co_await over;
        if (cancel.isCancelled())
            co_return cancelled();
        co_return QString(says).replace(u"[M]"_s, u'[' + newestLabel(prompt) + u']');
    }
    QCoro::Task<Result<QJsonObject>> respondGenerating(
        QString instructions, QString prompt, QJsonObject, CancelHandle cancel) override
    {
        const Result<QString> text = co_await respond(instructions, prompt, cancel);
        if (!text)
            co_return std::unexpected(text.error());
        co_return QJsonObject { { "body", *text }, { "intent", "draft_reply" },
            { "citations", QJsonArray { newestLabel(prompt) } }, { "warnings", QJsonArray() },
            { "send_side_effect", false } };
    }
    void setReason(const std::optional<QString>& words)
    {
        reason = words;
        Q_EMIT availabilityChanged();
    }

    QString says;
    std::optional<QString> reason;

private:
    /// The label of the last message in the prompt.
    static QString newestLabel(const QString& prompt)
    {
        static const QRegularExpression line(u"^\\[(M\\d+)\\]"_s, QRegularExpression::MultilineOption);
        QString label;
        for (const QRegularExpressionMatch& match : line.globalMatch(prompt))
            label = match.captured(1);
        return label;
    }
};

/// Machine facts that are the same in every image.
class PictureFacts final : public MachineFacts {
public:
    SystemVersion version() const override { return { 6, 1, 0 }; }
    SystemVersion minimumVersion() const override { return { 5, 10, 0 }; }
    MachineState state() const override
    {
        MachineState state;
        state.powerSourceStates = { u"AC Power"_s };
        state.physicalMemoryBytes = 16ULL << 30;
        state.freeDiskBytes = 212LL << 30;
        return state;
    }
};

/// A desktop that grants every requested shortcut.
class PictureKeys final : public GlobalShortcuts {
public:
    void bind(const GlobalShortcut& shortcut) override
    {
        m_states[shortcut.id] = { GlobalShortcutState::Kind::Bound, shortcut.keys.first() };
        Q_EMIT stateChanged(shortcut.id);
    }
    void release(const QString& id) override
    {
        m_states.remove(id);
        Q_EMIT stateChanged(id);
    }
    GlobalShortcutState state(const QString& id) const override { return m_states.value(id); }

private:
    QHash<QString, GlobalShortcutState> m_states;
};

/// Reports how text would be inserted into other programs, and inserts none.
class PictureInsertion final : public TextInsertion {
public:
    InsertionWay way() const override { return InsertionWay::PasteKeys; }
    bool isBoundToFocus() const override { return false; }
    void aim() override { }
    void insert(const QString&, Done) override { }
};

inline Machine pictureMachine(PictureDesktop*& desktop, PictureModel*& model)
{
    static SystemScheduler scheduler;
    Machine machine = thisMachine(AppPaths::fromEnvironment(), scheduler, 0077);
    machine.userUmask.reset();
    auto ownDesktop = std::make_unique<PictureDesktop>();
    desktop = ownDesktop.get();
    machine.desktop = std::move(ownDesktop);
    machine.microphone = std::make_unique<PictureMicrophone>(std::move(machine.microphone));
    auto ownModel = std::make_unique<PictureModel>();
    model = ownModel.get();
    machine.languageModel = std::move(ownModel);
    machine.facts = std::make_unique<PictureFacts>();
    machine.systemRoot = AppPaths::fromEnvironment().home + u"/system"_s;
    machine.callAudio = std::make_unique<PictureCallAudio>();
    machine.shortcuts = std::make_unique<PictureKeys>();
    machine.insertion = std::make_unique<PictureInsertion>();
    return machine;
}

}
