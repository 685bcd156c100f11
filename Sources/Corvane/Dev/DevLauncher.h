#pragma once

#include "Dev/DevDesk.h"
#include "Presentation/Choice.h"

#include <QObject>

namespace corvane {

/// The command that starts a project's own server, guessed from its folder; empty if unknown.
QString devServerCommand(const QString& folder);

/// Opens the terminals of the selected project, finds existing ones, and types commands into them.
class DevLauncher : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::Choice> actions READ actions CONSTANT)
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< if the project's folder is missing
public:
    DevLauncher(DevDesk& desk, QObject* parent);

    void reload(); ///< another project, or its folder

    QList<Choice> actions() const;
    const QString& notice() const { return m_notice; }

    Q_INVOKABLE void runQuickAction(const QString& kind);
    void createLocalSession();
    void attachOrCreateLocalSession(); ///< an open terminal of the project, else a new one
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
