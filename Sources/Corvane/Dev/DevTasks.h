#pragma once

#include "Dev/DevDesk.h"
#include "Foundation/Result.h"
#include "Work/WorkBoard.h"
#include "Work/WorkItemSheet.h"

namespace corvane {

/// "Terminal issue: {line}": the last line that mentions a problem, else the last one.
QString terminalIssueTitle(const QString& transcript);

/// The project's tasks and bugs on a board; they can be created from what a terminal shows.
class DevTasks : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WorkBoard* board READ board CONSTANT)
    Q_PROPERTY(corvane::WorkItemSheet* item READ item CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* open READ open CONSTANT) ///< the first open ones
    Q_PROPERTY(bool canCreate READ canCreate NOTIFY changed)
    Q_PROPERTY(bool hasTerminal READ hasTerminal NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
    Q_PROPERTY(bool failed READ failed NOTIFY changed)
public:
    DevTasks(DevDesk& desk, QObject* parent);

    void showProject(); ///< after another one is selected
    void reload(); ///< everything but the board
    void reloadBoard();

    WorkBoard* board() { return &m_board; }
    WorkItemSheet* item() { return &m_item; }
    GadgetListModel* open() { return &m_open; }
    const QList<WorkItemSeed>& openRows() const { return m_open.rows(); }
    bool canCreate() const { return m_desk.hasProject(); }
    bool hasTerminal() const { return canCreate() && m_desk.session(); }
    const QString& notice() const { return m_notice; }
    bool failed() const { return m_failed; }

    Q_INVOKABLE void createQuickTask();
    Q_INVOKABLE void createQuickBug();
    Q_INVOKABLE void taskFromTerminal();
    Q_INVOKABLE void bugFromTerminal();
    Q_INVOKABLE void proposeDevDecision();
    Q_INVOKABLE void openReport(const QString& capture); ///< a path that evidence of an item names
    Q_INVOKABLE void playSteps(const QString& capture); ///< in the browser
    Q_INVOKABLE void dismissNotice();

    /// From what the current terminal shows, redacted: the item, its evidence, and the context as the latest one.
    bool createTerminalWorkItem(const QString& kind, const QString& priority, const QString& label);

Q_SIGNALS:
    void changed();
    void wrote();

private:
    void createQuick(const QString& kind, const QString& title);
    void tell(const QString& notice, bool failed);
    void refuse(const Result<void>& done);

    DevDesk& m_desk;
    WorkBoard m_board;
    WorkItemSheet m_item;
    WorkContextId m_scope; ///< of the board
    RowListModel<WorkItemSeed> m_open;
    QString m_notice;
    bool m_failed = false;
};

}
