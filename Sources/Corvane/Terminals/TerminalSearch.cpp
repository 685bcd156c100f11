#include "Terminals/TerminalSearch.h"

#include "Foundation/Literals.h"
#include "Terminals/LumoTerminalSession.h"

#include <QLocale>

namespace corvane {

namespace {

constexpr size_t most = 100'000;
constexpr Milliseconds pause { 200 };

}

TerminalSearch::TerminalSearch(LumoTerminalSession& session, Scheduler& scheduler)
    : m_session(session)
    , m_scheduler(scheduler)
{
}

TerminalSearch::~TerminalSearch() = default;

void TerminalSearch::setShown(bool shown)
{
    if (std::exchange(m_shown, shown) == shown)
        return;
    search();
}

void TerminalSearch::setText(const QString& text)
{
    if (std::exchange(m_text, text) == text)
        return;
    search();
    if (!m_matches.empty())
        show(m_matches.size() - 1);
}

void TerminalSearch::setRegex(bool on)
{
    m_regex = on;
    search();
}

void TerminalSearch::setMatchCase(bool on)
{
    m_matchCase = on;
    search();
}

QString TerminalSearch::status() const
{
    if (m_text.isEmpty())
        return {};
    if (m_malformed)
        return u"Not a valid expression"_s;
    if (m_matches.empty())
        return u"Nothing found"_s;
    const QLocale locale;
    const QString count
        = locale.toString(qulonglong(m_matches.size())) + QLatin1StringView(m_matches.size() == most ? "+" : "");
    if (!m_current)
        return count + u" found"_s;
    // Numbered from the newest, since the search runs upwards.
    return u"%1 of %2"_s.arg(locale.toString(qulonglong(m_matches.size() - *m_current)), count);
}

void TerminalSearch::next()
{
    if (!m_matches.empty())
        show(m_current && *m_current > 0 ? *m_current - 1 : m_matches.size() - 1);
}

void TerminalSearch::previous()
{
    if (!m_matches.empty())
        show(m_current && *m_current + 1 < m_matches.size() ? *m_current + 1 : 0);
}

void TerminalSearch::update()
{
    if (m_shown && !m_text.isEmpty() && !m_later && m_session.terminal()
        && m_session.terminal()->terminal()->generation() != m_generation)
        m_later = m_scheduler.after(pause, [this] { search(); });
}

/// Releases the terminal between the steps, so that a program that prints does not wait for the search.
void TerminalSearch::find(terminal::Pattern pattern)
{
    terminal::SearchRun run(std::move(pattern), most);
    for (bool goesOn = true; goesOn;) {
        const auto access = m_session.terminal()->terminal();
        goesOn = access->search(run);
        m_newest = access->placeInHistory(-1);
    }
    m_matches = run.matches();
    m_generation = run.generation();
    m_shift = 0;
}

void TerminalSearch::follow(terminal::Terminal& terminal)
{
    const bool hasMoved = m_shown && !m_matches.empty() && terminal.generation() != m_generation;
    m_shift = hasMoved ? std::min<int64_t>(0, terminal.rowOf(m_newest) + 1) : 0;
}

/// Keeps the current match by the number of matches after it.
void TerminalSearch::search()
{
    m_later.reset();
    const size_t behind = m_current ? m_matches.size() - *m_current : 0;
    m_matches.clear();
    m_malformed = false;
    if (m_shown && !m_text.isEmpty() && m_session.terminal()) {
        auto pattern = terminal::Pattern::make(m_text.toStdString(),
            m_regex ? terminal::Pattern::Kind::Regex : terminal::Pattern::Kind::Literal,
            m_matchCase ? terminal::Pattern::Case::Sensitive : terminal::Pattern::Case::Insensitive);
        m_malformed = !pattern;
        if (pattern)
            find(std::move(*pattern));
        else
            m_generation = m_session.terminal()->terminal()->generation();
    }
    m_current = behind > 0 && behind <= m_matches.size() ? std::optional(m_matches.size() - behind) : std::nullopt;
    Q_EMIT changed();
    Q_EMIT m_session.changed();
}

/// Scrolls the match into view, a third below the top.
void TerminalSearch::show(size_t match)
{
    m_current = match;
    const int64_t row = m_matches[match].row + m_shift;
    const int rows = m_session.terminal()->terminal()->size().rows;
    const int64_t top = m_session.scrollTop();
    if (row < top || row >= top + rows)
        m_session.scrollTo(row - rows / 3);
    Q_EMIT changed();
    Q_EMIT m_session.changed();
}

}
