#pragma once

#include "Browser/BrowserPlayer.h"
#include "Browser/BrowserReportSheet.h"
#include "Browser/BrowserRows.h"
#include "Browser/ChromiumBrowserController.h"
#include "Presentation/Choice.h"
#include "Presentation/RowListModel.h"

namespace corvane {

class Desktop;
class LocalDB;
class UserDefaults;

/// The browser of a project: its controls, what went wrong in the page, and what was kept of earlier looks.
class BrowserView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::ChromiumBrowserController* browser READ browser CONSTANT)
    Q_PROPERTY(corvane::BrowserReportSheet* sheet READ sheet CONSTANT)
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY changed) ///< what stands in the field
    Q_PROPERTY(QString addressHint READ addressHint NOTIFY changed)
    Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed) ///< empty for none
    Q_PROPERTY(QString problemAction READ problemAction NOTIFY changed) ///< empty where nothing can be done here
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< empty for none
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyDetail READ emptyDetail NOTIFY changed)
    Q_PROPERTY(QString emptyAction READ emptyAction NOTIFY changed)
    Q_PROPERTY(corvane::GadgetListModel* issues READ issues CONSTANT) ///< of BrowserIssue, newest first
    Q_PROPERTY(int issueCount READ issueCount NOTIFY changed)
    Q_PROPERTY(QString issueText READ issueText NOTIFY changed)
    Q_PROPERTY(QString issuesHint READ issuesHint NOTIFY changed) ///< empty where there are issues
    Q_PROPERTY(bool evidenceReady READ evidenceReady NOTIFY changed)
    Q_PROPERTY(corvane::GadgetListModel* sessions READ sessions CONSTANT) ///< of BrowserSession, newest first
    Q_PROPERTY(QList<corvane::Choice> sizes READ sizes CONSTANT)
    Q_PROPERTY(QString size READ size NOTIFY changed) ///< an id of `sizes`
    Q_PROPERTY(QString zoomText READ zoomText NOTIFY changed)
    Q_PROPERTY(bool windowShown READ windowShown WRITE setWindowShown NOTIFY changed)
public:
    /// All of it outlives the view.
    struct Surroundings {
        LocalDB& db;
        UserDefaults& defaults;
        Desktop& desktop;
        BrowserSurroundings browser;
        /// A new shell of that name, into which the command is typed.
        std::function<void(const QString& label, const QString& command)> openTerminal;
    };
    explicit BrowserView(const Surroundings& at, QObject* parent = nullptr);

    void setProject(const BrowserProject& project); ///< one without an id: none
    const BrowserProject& project() const { return m_project; }
    void reload(); ///< the sessions may have changed

    ChromiumBrowserController* browser() { return &m_browser; }
    BrowserReportSheet* sheet() { return &m_sheet; }
    GadgetListModel* issues() { return &m_issues; }
    GadgetListModel* sessions() { return &m_sessions; }
    const QList<DevBrowserSessionRow>& sessionRows() const { return m_sessionRows; }
    int issueCount() const { return int(m_browser.issueCount()); }
    const QString& address() const { return m_address; }
    void setAddress(const QString& address);
    QString addressHint() const;
    QString statusText() const;
    QString problem() const;
    QString problemAction() const;
    QString notice() const;
    QString emptyTitle() const;
    QString emptyDetail() const;
    QString emptyAction() const;
    QString issueText() const;
    QString issuesHint() const;
    bool evidenceReady() const { return m_browser.hasEvidence(); }
    QList<Choice> sizes() const;
    const QString& size() const { return m_size; }
    QString zoomText() const;
    bool windowShown() const { return m_browser.options().hasWindow; }
    void setWindowShown(bool shown);

    Q_INVOKABLE void open(); ///< what stands in the address field
    Q_INVOKABLE void chooseSize(const QString& id);
    Q_INVOKABLE void zoom(int steps); ///< 0: back to the page's own size
    Q_INVOKABLE void find(const QString& text, bool backwards);
    Q_INVOKABLE void capture(); ///< shows the picture; the sheet saves it
    Q_INVOKABLE void reportBug();
    Q_INVOKABLE void scan(); ///< in a shell
    Q_INVOKABLE void openEvidence(const QString& sessionId = {}); ///< its folder; without an id the latest one
    Q_INVOKABLE void openAgain(const QString& sessionId);
    Q_INVOKABLE void playAgain(const QString& sessionId);
    Q_INVOKABLE void solveProblem();
    Q_INVOKABLE void dismissNotice();

Q_SIGNALS:
    void changed();
    void wrote(); ///< items, evidence or sessions of the project

private:
    void refresh();
    void saveSession();
    void openSheet(BrowserReportSheet::Purpose purpose);
    const DevBrowserSessionRow* findSession(const QString& id) const;
    QString sessionId();
    void applyMetrics();
    void say(const QString& notice);

    const Surroundings m_at;
    ChromiumBrowserController m_browser;
    BrowserReportSheet m_sheet;
    BrowserPlayer m_player;
    BrowserProject m_project;
    QHash<QString, QString> m_sessionIds; ///< of this run, by project
    QList<DevBrowserSessionRow> m_sessionRows;
    RowListModel<BrowserIssue> m_issues;
    RowListModel<BrowserSession> m_sessions;
    QString m_address;
    QString m_savedURL; ///< in the row of the session
    QString m_size;
    QString m_notice;
    int m_zoom = 0; ///< steps from the page's own size
};

}
