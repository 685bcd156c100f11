#pragma once

#include "Browser/BrowserRows.h"
#include "Presentation/RowListModel.h"

namespace corvane {

class ChromiumBrowserController;

/// What went wrong in the page, as a list.
class BrowserIssues : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* rows READ rows CONSTANT) ///< of BrowserIssue, newest first
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed) ///< such as "3 issues"
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed) ///< empty if there are any
public:
    BrowserIssues(ChromiumBrowserController& browser, QObject* parent); ///< the browser outlives it

    GadgetListModel* rows() { return &m_rows; }
    int count() const { return int(m_rows.rows().size()); }
    QString text() const;
    QString emptyText() const;

Q_SIGNALS:
    void changed();

private:
    RowListModel<BrowserIssue> m_rows;
};

}
