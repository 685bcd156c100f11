#pragma once

#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Terminal/Pty/Session.h"
#include "Terminals/TerminalEvents.h"
#include "Terminals/TerminalSearch.h"
#include "Terminals/TerminalTranscriptBuffer.h"

#include <QObject>
#include <atomic>

namespace corvane {

class MediaDecoder;
class TerminalPictures;

/// A local shell with its screen and its transcript. The shell starts when the terminal is first shown; the session
/// keeps the state of a view, so that views can be recreated. Main thread only.
class LumoTerminalSession : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString label READ label NOTIFY labelChanged)
    Q_PROPERTY(corvane::TerminalSearch* search READ search CONSTANT)
public:
    struct Options {
        QString title; ///< shown until the shell or the user sets another
        std::optional<QString> projectId {};
        QString projectSlug = u"local"_s;
        QString initialCommand {}; ///< typed once the shell is ready
        terminal::Command command;
    };

    /// The scheduler outlives the session, and so does the decoder of pictures, if there is one.
    LumoTerminalSession(
        Options options, Scheduler& scheduler, MediaDecoder* decoder = nullptr, QObject* parent = nullptr);
    ~LumoTerminalSession() override;

    const QString& id() const { return m_id; }
    const QString& title() const { return m_options.title; }
    const std::optional<QString>& projectId() const { return m_options.projectId; }
    const QString& projectSlug() const { return m_options.projectSlug; }
    QString currentDirectory() const; ///< of the running shell; the initial one before and after
    const QString& initialCommand() const { return m_options.initialCommand; }
    qint64 startedAt() const { return m_startedAt; } ///< milliseconds since the epoch
    TerminalTranscriptBuffer& transcript() { return m_transcript; }

    /// The tab's label: the user's name for it, else the shell's title, else the title.
    QString label() const;
    void rename(const QString& name); ///< empty: the shell's title

    /// The terminal with the given size and colours; starts the shell at the first call. Null once terminated.
    terminal::Session* view(terminal::Size size);
    void setColors(const terminal::PaletteState& colors, bool dark);
    terminal::Session* terminal() { return m_terminal.get(); } ///< null before it is first shown
    /// Ends the shell and its children.
    void terminate();

    bool failedToStart() const { return m_terminal && m_terminal->process() < 0; }
    bool isRunning() const { return m_terminal && m_terminal->isRunning(); }
    const std::optional<terminal::ExitStatus>& exitStatus() const { return m_exit; } ///< none while it runs
    QString runningCommand() const; ///< the foreground program; empty if the shell is waiting
    void send(const QString& text); ///< as if typed
    void showPicture(uint32_t image, terminal::Bitmap bitmap);

    /// What the view shows, from `scrollTop` on. False while the program uses synchronised output.
    bool snapshot(terminal::Snapshot& snapshot);
    /// The first visible row. It stays on its text while output arrives; 0 follows the output.
    int64_t scrollTop() const { return m_scrollTop; }
    void scrollTo(int64_t top);
    /// To the prompt before or after the first row shown, if the shell marks its prompts (OSC 133).
    Q_INVOKABLE void scrollToPrompt(bool next);
    /// The transcript as it may leave the program: with probable secrets masked.
    Q_INVOKABLE QString redactedTranscript();

    TerminalSearch* search() { return &m_search; }
    bool attention() const { return m_attention; } ///< the bell rang since the user last looked
    void clearAttention();
    const QString& pointer() const { return m_pointer; } ///< the shape that a program requested
    const TerminalRequests::Progress& progress() const { return m_progress; } ///< of the running program

Q_SIGNALS:
    void changed(); ///< something may need to be redrawn
    void labelChanged();
    void clipboardRequested(const QString& text); ///< a program wants to set the clipboard
    void notified(const QString& title, const QString& body); ///< a program wants the user to know
    void ended(); ///< the shell has exited, or could not be started

private:
    void start(terminal::Size size);
    void post(); ///< on any thread
    void deliver();
    void packHistory();

    const QString m_id;
    Options m_options;
    Scheduler& m_scheduler;
    const qint64 m_startedAt;
    TerminalTranscriptBuffer m_transcript;
    TerminalEvents m_events;
    QString m_name;
    QString m_shellTitle;
    QString m_shellDirectory;
    terminal::PaletteState m_colors = terminal::Palette().initial;
    bool m_dark = true;
    bool m_attention = false;
    QString m_pointer;
    TerminalRequests::Progress m_progress;
    TerminalPictures* m_pictures = nullptr;
    int64_t m_scrollTop = 0;
    terminal::HistoryPlace m_scrollPlace;
    TerminalSearch m_search;
    std::unique_ptr<Timer> m_initialCommandTimer;
    std::unique_ptr<Timer> m_tick;
    std::unique_ptr<Timer> m_packing;
    std::atomic<bool> m_posted = false;
    std::atomic<bool> m_childEnded = false;
    std::optional<terminal::ExitStatus> m_exit;
    std::unique_ptr<terminal::Session> m_terminal; // destroyed first: its threads call the members above
};

}
