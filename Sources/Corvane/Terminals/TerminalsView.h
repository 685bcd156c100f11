#pragma once

#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"
#include "Terminals/FileReference.h"
#include "Terminals/LumoTerminalSession.h"
#include "Terminals/TerminalFontSize.h"
#include "Terminals/TerminalQuestion.h"

#include <sys/types.h>

namespace corvane {

class Desktop;
class UserDefaults;

/// A terminal tab.
class TerminalTab {
    Q_GADGET
    Q_PROPERTY(QString tabId MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(bool selected MEMBER selected)
    Q_PROPERTY(bool attention MEMBER attention)
    Q_PROPERTY(bool ended MEMBER ended)
    Q_PROPERTY(qreal progress MEMBER progress)
    Q_PROPERTY(bool stalled MEMBER stalled)
public:
    QString id;
    QString title;
    bool selected = false;
    bool attention = false; ///< its bell rang since it was last in front
    bool ended = false;
    qreal progress = 0; ///< the share that its program has done; 1 if that is not known, 0 for none
    bool stalled = false; ///< the program has paused, or failed

    static constexpr const char* role = "entry";
    QString key() const { return id; }
    bool operator==(const TerminalTab&) const = default;
};

/// Whose terminal it is, and where it starts.
struct TerminalPlace {
    std::optional<QString> projectId = {}; ///< none: a plain local shell
    QString projectSlug = u"local"_s;
    QString directory = {}; ///< empty: that of the current tab
};

/// The terminal screen: local shells in tabs.
class TerminalsView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* tabs READ tabs CONSTANT)
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(corvane::LumoTerminalSession* current READ current NOTIFY changed)
    Q_PROPERTY(corvane::TerminalQuestion* question READ question CONSTANT)
    Q_PROPERTY(QString endedText READ endedText NOTIFY changed) ///< of the current tab; empty while its shell runs
    Q_PROPERTY(corvane::TerminalFontSize* fontSize READ fontSize CONSTANT)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyDetail READ emptyDetail CONSTANT)
    Q_PROPERTY(QString createLabel READ createLabel CONSTANT)
    Q_PROPERTY(QString restartLabel READ restartLabel CONSTANT)
    Q_PROPERTY(QString closeLabel READ closeLabel CONSTANT)
public:
    struct Surroundings {
        Scheduler& scheduler;
        UserDefaults& defaults;
        Desktop& desktop;
        QString home;
        std::optional<mode_t> umask; ///< of the user's programs; none: that of this process
        MediaDecoder* decoder = nullptr; ///< of pictures that programs show
    };

    /// All references outlive the view.
    explicit TerminalsView(Surroundings at, QObject* parent = nullptr);
    ~TerminalsView() override;

    HoldingListModel* tabs() { return &m_tabs; }
    int count() const { return int(m_sessions.size()); }
    LumoTerminalSession* current() const { return m_current; }
    TerminalQuestion* question() { return &m_question; }
    TerminalFontSize* fontSize() { return &m_fontSize; }
    const std::vector<std::unique_ptr<LumoTerminalSession>>& localSessions() const { return m_sessions; }

    /// A new shell in front, titled "{slug}-{label}-{number}"; types the command into it.
    LumoTerminalSession& createLocalSession(
        const QString& label, const QString& command = {}, const TerminalPlace& place = {});
    /// The same with another program instead of the shell.
    LumoTerminalSession& createLocalSession(const QString& label, terminal::Command command);

    void setPlace(const TerminalPlace& place) { m_place = place; } ///< of the shells that `create` starts
    Q_INVOKABLE void create(); ///< beside one of the same project in the folder of that one
    Q_INVOKABLE void select(const QString& id);
    Q_INVOKABLE void step(int by); ///< to the next or previous tab, wrapping around
    Q_INVOKABLE void close(const QString& id); ///< asks first while a program is running in it
    Q_INVOKABLE void closeCurrent();
    Q_INVOKABLE void restart(); ///< starts a new shell in the current tab, whose shell has exited
    Q_INVOKABLE void rename(const QString& id, const QString& name); ///< empty: the shell's title
    Q_INVOKABLE void paste(const QString& text); ///< into the current tab; asks first if it would run at once

    /// A file opens in the user's editor at its line, an address in the browser that was set, anything else in the
    /// desktop's default program.
    Q_INVOKABLE void openLink(const QString& address);
    void setBrowser(const std::function<bool(const QString& address)>& browser) { m_browser = browser; }

    QString endedText() const;
    QString emptyTitle() const { return u"No terminal is open"_s; }
    QString emptyDetail() const;
    QString createLabel() const { return u"New terminal"_s; }
    QString restartLabel() const { return u"Start again"_s; }
    QString closeLabel() const { return u"Close terminal"_s; }

    /// True if programs are still running: asks the question, unless it is already shown; a second call means to quit.
    bool asksBeforeQuit();

Q_SIGNALS:
    void changed();
    void notified(const QString& title, const QString& body); ///< by a program, not more often than every 2 seconds

private:
    LumoTerminalSession& add(LumoTerminalSession::Options options);
    LumoTerminalSession* find(const QString& id) const;
    void closeNow(LumoTerminalSession& session);
    void pasteNow(LumoTerminalSession& session, const std::string& bytes);
    void sessionEnded(LumoTerminalSession& session);
    void refresh();
    QString titleFor(const QString& label, const TerminalPlace& place = {}) const;
    void openFile(const FileReference& file);

    const Surroundings m_at;
    std::function<bool(const QString&)> m_browser; ///< false if it cannot show the address
    std::vector<std::unique_ptr<LumoTerminalSession>> m_sessions;
    LumoTerminalSession* m_current = nullptr;
    RowListModel<TerminalTab> m_tabs;
    TerminalQuestion m_question;
    TerminalFontSize m_fontSize;
    std::optional<qint64> m_notifiedAt;
    TerminalPlace m_place;
};

}
