#pragma once

#include "Presentation/Choice.h"

#include <QObject>

namespace corvane {

/// The pane beside the workspace: which of its tabs is in front, and whether the user hid it.
class DevInspector : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::TabItem> tabs READ tabs CONSTANT)
    Q_PROPERTY(QString tab READ tab WRITE setTab NOTIFY changed) ///< team, tasks, activity, context
    Q_PROPERTY(bool collapsed READ collapsed WRITE setCollapsed NOTIFY changed)
public:
    using QObject::QObject;

    static const QList<TabItem>& tabs();
    const QString& tab() const { return m_tab; }
    void setTab(const QString& id); ///< an unknown word has no effect
    bool collapsed() const { return m_collapsed; }
    void setCollapsed(bool collapsed);

Q_SIGNALS:
    void changed();

private:
    QString m_tab = tabs().first().id;
    bool m_collapsed = false;
};

}
