#pragma once

#include "Browser/BrowserBugs.h"
#include "Browser/BrowserRows.h"
#include "Presentation/RowListModel.h"

namespace corvane {

class ChromiumBrowserController;
class Desktop;
class LocalDB;

/// The browser sessions of a project: the row of the current one, and the evidence of earlier ones, which can be opened
/// and replayed.
class BrowserHistory : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* rows READ rows CONSTANT) ///< of BrowserSession, newest first
public:
    /// All of it outlives the history.
    BrowserHistory(LocalDB& db, ChromiumBrowserController& browser, Desktop& desktop, QObject* parent);

    void setProject(const BrowserProject& project); ///< without an id: no project
    void reload(); ///< the rows may have changed
    GadgetListModel* rows() { return &m_rows; }

    QString sessionId(); ///< of the current session
    void save(); ///< the current session; one with saved evidence ends, and a new one starts

    Q_INVOKABLE void open(const QString& sessionId); ///< its page
    Q_INVOKABLE void play(const QString& sessionId); ///< its steps
    Q_INVOKABLE void openFolder(const QString& sessionId = {}); ///< its evidence; without an id the latest

    /// Of the evidence at that path, of any project. Errors are for the user.
    Result<void> openReport(const QString& path);
    Result<void> playSteps(const QString& path);

Q_SIGNALS:
    void said(const QString& notice);
    void openRequested(const QString& url);
    void playRequested(const QList<corvane::BrowserStep>& steps);

private:
    const DevBrowserSessionRow* find(const QString& id) const;
    Result<QString> folderOf(const QString& evidencePath) const;

    LocalDB& m_db;
    ChromiumBrowserController& m_browser;
    Desktop& m_desktop;
    BrowserProject m_project;
    QHash<QString, QString> m_sessionIds; ///< of this run, by project
    QList<DevBrowserSessionRow> m_sessions;
    RowListModel<BrowserSession> m_rows;
};

}
