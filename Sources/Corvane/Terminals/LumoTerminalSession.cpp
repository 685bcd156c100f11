#include "Terminals/LumoTerminalSession.h"

#include "Foundation/Redaction.h"
#include "Terminals/ShellCommand.h"
#include "Terminals/TerminalPictures.h"

#include <QUuid>

namespace corvane {

namespace {

constexpr Milliseconds initialCommandDelay { 350 };
constexpr Milliseconds quietBeforePacking { 10'000 };
constexpr Milliseconds pauseOfPacking { 50 };
constexpr size_t pagesAtOnce = 4;
constexpr size_t historyLines = 100'000;
constexpr size_t historyBytes = 64 << 20;

terminal::Config configuration(bool dark)
{
    terminal::Config config;
    config.scrollbackLines = historyLines;
    config.scrollbackBytes = historyBytes;
    config.darkColors = dark;
    return config;
}

}

LumoTerminalSession::LumoTerminalSession(Options options, Scheduler& scheduler, MediaDecoder* decoder, QObject* parent)
    : QObject(parent)
    , m_id(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_options(std::move(options))
    , m_scheduler(scheduler)
    , m_startedAt(scheduler.nowMs())
    , m_search(*this, scheduler)
{
    if (decoder)
        m_pictures = new TerminalPictures(*this, *decoder);
}

LumoTerminalSession::~LumoTerminalSession() = default;

QString LumoTerminalSession::currentDirectory() const
{
    if (m_terminal) {
        if (const std::string directory = m_terminal->workingDirectory(); !directory.empty())
            return QString::fromStdString(directory);
    }
    return m_shellDirectory.isEmpty() ? QString::fromStdString(m_options.command.directory) : m_shellDirectory;
}

QString LumoTerminalSession::label() const
{
    if (!m_name.isEmpty())
        return m_name;
    return m_shellTitle.isEmpty() ? m_options.title : m_shellTitle;
}

void LumoTerminalSession::rename(const QString& name)
{
    m_name = name.simplified();
    Q_EMIT labelChanged();
}

terminal::Session* LumoTerminalSession::view(terminal::Size size)
{
    if (!m_terminal && !m_exit)
        start(size);
    else if (m_terminal && m_terminal->terminal()->size() != size.clamped())
        m_terminal->resize(size);
    return m_terminal.get();
}

void LumoTerminalSession::start(terminal::Size size)
{
    terminal::SessionTaps taps;
    taps.output = [this](std::string_view output) {
        m_transcript.received(output);
    };
    taps.input = [this](std::string_view input, bool hidden) {
        m_transcript.sent(input, hidden);
    };
    taps.changed = [this] {
        post();
    };
    taps.exited = [this](terminal::ExitStatus) {
        m_childEnded = true;
        post();
    };
    m_terminal = std::make_unique<terminal::Session>(size, configuration(m_dark), std::move(taps));
    {
        const auto access = m_terminal->terminal();
        access->setListener(&m_events);
        access->setColors(m_colors, m_dark);
    }
    if (!m_terminal->start(m_options.command)) {
        m_exit = terminal::ExitStatus { false, 127 };
        Q_EMIT ended();
        return;
    }
    if (m_options.initialCommand.trimmed().isEmpty())
        return;
    m_initialCommandTimer = m_scheduler.after(initialCommandDelay, [this] { send(m_options.initialCommand + u'\n'); });
}

void LumoTerminalSession::setColors(const terminal::PaletteState& colors, bool dark)
{
    m_colors = colors;
    m_dark = dark;
    if (m_terminal)
        m_terminal->terminal()->setColors(colors, dark);
    Q_EMIT changed();
}

void LumoTerminalSession::terminate()
{
    m_initialCommandTimer.reset();
    m_tick.reset();
    m_packing.reset();
    if (!m_exit)
        m_exit = terminal::ExitStatus { true, 1 };
    m_terminal.reset();
}

QString LumoTerminalSession::runningCommand() const
{
    if (!isRunning())
        return {};
    const QString program = QString::fromStdString(m_terminal->foregroundProgram());
    if (!program.isEmpty())
        return program;
    // Such as an editor, which has no shell around it.
    const QString own = QString::fromStdString(terminal::programOf(m_terminal->process()));
    return isShell(own) ? QString() : own;
}

void LumoTerminalSession::send(const QString& text)
{
    if (m_terminal)
        m_terminal->terminal()->type(text.toStdString());
}

void LumoTerminalSession::showPicture(uint32_t image, terminal::Bitmap bitmap)
{
    if (m_terminal)
        m_terminal->terminal()->setPicture(image, std::move(bitmap));
    Q_EMIT changed();
}

bool LumoTerminalSession::snapshot(terminal::Snapshot& snapshot)
{
    if (!m_terminal)
        return false;
    const auto access = m_terminal->terminal();
    const int64_t due = access->tick(m_scheduler.monotonicMs() * 1'000'000);
    m_tick.reset();
    if (due >= 0)
        m_tick = m_scheduler.after(Milliseconds(due / 1'000'000 + 1), [this] { Q_EMIT changed(); });
    if (access->isFrozen() && snapshot.size == access->size())
        return false;
    if (m_scrollTop < 0)
        m_scrollTop = access->isAlternate() ? 0 : access->rowOf(m_scrollPlace);
    access->snapshot(m_scrollTop, snapshot);
    m_search.follow(*access);
    return true;
}

void LumoTerminalSession::scrollTo(int64_t top)
{
    if (!m_terminal)
        return;
    {
        const auto access = m_terminal->terminal();
        const auto rows = access->isAlternate() ? 0 : int64_t(access->historyRows());
        m_scrollTop = std::clamp<int64_t>(top, -rows, 0);
        if (m_scrollTop < 0)
            m_scrollPlace = access->placeInHistory(m_scrollTop);
    }
    Q_EMIT changed();
}

void LumoTerminalSession::scrollToPrompt(bool next)
{
    if (!m_terminal)
        return;
    const int64_t top = scrollTop();
    std::optional<int64_t> target;
    for (const auto& mark : m_terminal->terminal()->marks()) {
        if (mark.kind != terminal::PromptMark::Prompt)
            continue;
        if (next && mark.row > top) {
            target = mark.row;
            break;
        }
        if (!next && mark.row < top)
            target = mark.row;
    }
    if (target || next)
        scrollTo(target.value_or(0));
}

QString LumoTerminalSession::redactedTranscript()
{
    constexpr qsizetype all = 24'000;
    return redactSensitive(m_transcript.snapshot(all));
}

void LumoTerminalSession::clearAttention()
{
    if (std::exchange(m_attention, false))
        Q_EMIT labelChanged();
}

/// Posts at most one event, however much arrives.
void LumoTerminalSession::post()
{
    if (!m_posted.exchange(true))
        QMetaObject::invokeMethod(this, [this] { deliver(); }, Qt::QueuedConnection);
}

void LumoTerminalSession::deliver()
{
    m_posted = false;
    if (!m_terminal)
        return;
    const TerminalRequests requests = m_events.take();
    m_attention |= requests.bell;
    if (requests.directory)
        m_shellDirectory = *requests.directory;
    if (requests.title)
        m_shellTitle = *requests.title;
    if (requests.pointer)
        m_pointer = *requests.pointer;
    const auto progressBefore = std::exchange(m_progress, requests.progress.value_or(m_progress));
    if (requests.title || requests.bell || progressBefore != m_progress)
        Q_EMIT labelChanged();
    if (requests.clipboard)
        Q_EMIT clipboardRequested(*requests.clipboard);
    if (requests.notification)
        Q_EMIT notified(requests.notification->title.isEmpty() ? label() : requests.notification->title,
            requests.notification->body);
    for (const TerminalRequests::Picture& picture : requests.pictures) {
        if (m_pictures)
            m_pictures->decode(picture);
    }
    Q_EMIT changed();
    m_packing = m_scheduler.after(quietBeforePacking, [this] { packHistory(); });
    if (m_childEnded && !m_exit) {
        m_exit = m_terminal->exitStatus();
        m_progress = {};
        Q_EMIT ended();
    }
}

/// Compresses the history of an idle terminal, in small steps.
void LumoTerminalSession::packHistory()
{
    if (m_terminal && m_terminal->terminal()->compressHistory(pagesAtOnce))
        m_packing = m_scheduler.after(pauseOfPacking, [this] { packHistory(); });
}

}
