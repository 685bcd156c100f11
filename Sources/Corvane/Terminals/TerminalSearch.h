#pragma once

#include "Foundation/Scheduler.h"
#include "Terminal/Core/Terminal.h"

#include <QObject>
#include <optional>
#include <vector>

namespace corvane {

class LumoTerminalSession;

/// The search bar of a terminal: the query, the matches, and the current one.
class TerminalSearch : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY changed)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY changed)
    Q_PROPERTY(bool regex READ regex WRITE setRegex NOTIFY changed)
    Q_PROPERTY(bool matchCase READ matchCase WRITE setMatchCase NOTIFY changed)
    Q_PROPERTY(QString status READ status NOTIFY changed) ///< such as "3 of 17"
public:
    /// Both outlive the search.
    TerminalSearch(LumoTerminalSession& session, Scheduler& scheduler);
    ~TerminalSearch() override;

    bool shown() const { return m_shown; }
    void setShown(bool shown);
    QString text() const { return m_text; }
    void setText(const QString& text);
    bool regex() const { return m_regex; }
    void setRegex(bool on);
    bool matchCase() const { return m_matchCase; }
    void setMatchCase(bool on);
    QString status() const;

    Q_INVOKABLE void next(); ///< upwards, towards older text
    Q_INVOKABLE void previous();

    /// The text has changed: searches again soon if the bar is open.
    void update();
    /// Before a frame: output has moved what was found in the history.
    void follow(terminal::Terminal& terminal);
    int64_t shift() const { return m_shift; } ///< rows to add to those of the matches in the history
    uint64_t generation() const { return m_generation; } ///< the state of the terminal that the matches are valid for
    const std::vector<terminal::SearchMatch>& matches() const { return m_matches; }
    std::optional<size_t> current() const { return m_current; }

Q_SIGNALS:
    void changed();

private:
    void search();
    void find(terminal::Pattern pattern);
    void show(size_t match);

    LumoTerminalSession& m_session;
    Scheduler& m_scheduler;
    std::unique_ptr<Timer> m_later;
    bool m_shown = false;
    bool m_regex = false;
    bool m_matchCase = false;
    bool m_malformed = false;
    QString m_text;
    std::vector<terminal::SearchMatch> m_matches;
    std::optional<size_t> m_current;
    uint64_t m_generation = 0;
    terminal::HistoryPlace m_newest; ///< the last row of the history at the search
    int64_t m_shift = 0;
};

}
