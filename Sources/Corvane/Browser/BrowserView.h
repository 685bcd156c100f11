#pragma once

#include "Browser/BrowserDisplay.h"
#include "Browser/BrowserHistory.h"
#include "Browser/BrowserIssues.h"
#include "Browser/BrowserPicker.h"
#include "Browser/BrowserPlayer.h"
#include "Browser/BrowserReportSheet.h"
#include "Browser/ChromiumBrowserController.h"

namespace corvane {

/// The browser of a project: its address, its state, and the parts around the page.
class BrowserView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::ChromiumBrowserController* browser READ browser CONSTANT)
    Q_PROPERTY(corvane::BrowserReportSheet* sheet READ sheet CONSTANT)
    Q_PROPERTY(corvane::BrowserIssues* issues READ issues CONSTANT)
    Q_PROPERTY(corvane::BrowserHistory* history READ history CONSTANT)
    Q_PROPERTY(corvane::BrowserDisplay* display READ display CONSTANT)
    Q_PROPERTY(corvane::BrowserPicker* picker READ picker CONSTANT)
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY changed) ///< the text of the field
    Q_PROPERTY(QString addressHint READ addressHint NOTIFY changed)
    Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed) ///< empty for none
    Q_PROPERTY(QString problemAction READ problemAction NOTIFY changed) ///< empty if nothing can be done here
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< empty for none
    Q_PROPERTY(QString noticeAction READ noticeAction NOTIFY changed) ///< empty for none
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyDetail READ emptyDetail NOTIFY changed)
    Q_PROPERTY(QString emptyAction READ emptyAction NOTIFY changed)
    Q_PROPERTY(bool evidenceReady READ evidenceReady NOTIFY changed)
public:
    /// All of it outlives the view.
    struct Surroundings {
        LocalDB& db;
        UserDefaults& defaults;
        Desktop& desktop;
        BrowserSurroundings browser;
        /// Opens a shell of that name and types the command into it.
        std::function<void(const QString& label, const QString& command)> openTerminal;
    };
    explicit BrowserView(const Surroundings& at, QObject* parent = nullptr);

    void setProject(const BrowserProject& project); ///< one without an id: none
    const BrowserProject& project() const { return m_project; }

    ChromiumBrowserController* browser() { return &m_browser; }
    BrowserReportSheet* sheet() { return &m_sheet; }
    BrowserIssues* issues() { return &m_issues; }
    BrowserHistory* history() { return &m_history; }
    BrowserDisplay* display() { return &m_display; }
    BrowserPicker* picker() { return &m_picker; }
    const QString& address() const { return m_address; }
    void setAddress(const QString& address);
    QString addressHint() const;
    QString statusText() const;
    QString problem() const;
    QString problemAction() const;
    QString notice() const;
    QString noticeAction() const;
    QString emptyTitle() const;
    QString emptyDetail() const;
    QString emptyAction() const;
    bool evidenceReady() const { return m_browser.hasEvidence(); }

    Q_INVOKABLE void open(); ///< the address in the field
    Q_INVOKABLE void find(const QString& text, bool backwards);
    Q_INVOKABLE void capture(); ///< shows the picture; the sheet saves it
    Q_INVOKABLE void reportBug();
    Q_INVOKABLE void scan(); ///< in a shell
    Q_INVOKABLE void solveProblem();
    Q_INVOKABLE void actOnNotice();
    Q_INVOKABLE void dismissNotice(); ///< and stops what it reports

Q_SIGNALS:
    void changed();
    void wrote(); ///< items, evidence or sessions of the project
    void itemRequested(const QString& id); ///< to be shown on the board

private:
    void refresh();
    void openSheet(BrowserReportSheet::Purpose purpose);
    void say(const QString& notice, const QString& itemId = {});

    const Surroundings m_at;
    ChromiumBrowserController m_browser;
    BrowserReportSheet m_sheet;
    BrowserIssues m_issues;
    BrowserHistory m_history;
    BrowserDisplay m_display;
    BrowserPicker m_picker;
    BrowserPlayer m_player;
    BrowserProject m_project;
    QString m_address;
    QString m_savedURL; ///< in the row of the session
    QString m_notice;
    QString m_item; ///< the item named by the notice; empty for none
};

}
