#pragma once

#include "Dev/DevDesk.h"
#include "Presentation/Choice.h"

#include <QObject>

namespace corvane {

/// How a project's own server is started, by what its folder holds; empty where nothing tells.
QString devServerCommand(const QString& folder);

/// The terminals of the chosen project: opened, found again, and with a command typed into them.
class DevLauncher : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::Choice> actions READ actions CONSTANT)
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< that the project's folder is gone
public:
    DevLauncher(DevDesk& desk, QObject* parent);

    void reload(); ///< another project, or its folder

    QList<Choice> actions() const;
    const QString& notice() const { return m_notice; }

    Q_INVOKABLE void runQuickAction(const QString& kind);
    Q_INVOKABLE void createLocalSession();
    Q_INVOKABLE void attachOrCreateLocalSession(); ///< a terminal of the project that is open, else a new one
    Q_INVOKABLE void openFolder();

Q_SIGNALS:
    void changed();
    void launched();

private:
    QString commandOf(const QString& kind) const;

    DevDesk& m_desk;
    QString m_notice;
};

}
