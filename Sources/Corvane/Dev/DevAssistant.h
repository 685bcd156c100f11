#pragma once

#include "Dev/DevDesk.h"
#include "Presentation/Choice.h"

#include <QObject>

namespace corvane {

enum class WorkAssistantTarget { Codex, Claude, Terminal };

/// Hands the project's packet to a coding agent: copies it, and opens a terminal with the agent. The user pastes it.
class DevAssistant : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString prompt READ assistantPrompt WRITE setAssistantPrompt NOTIFY changed)
    Q_PROPERTY(QString promptHint READ promptHint CONSTANT)
    Q_PROPERTY(QList<corvane::Choice> targets READ targets CONSTANT)
    Q_PROPERTY(QString target READ target WRITE setTarget NOTIFY changed)
    Q_PROPERTY(QString launchLabel READ launchLabel NOTIFY changed)
    Q_PROPERTY(QString targetText READ targetText NOTIFY changed) ///< what a launch will do
    Q_PROPERTY(QString packet READ packet NOTIFY changed) ///< in its current state
    Q_PROPERTY(QString transcriptText READ transcriptText NOTIFY changed) ///< which terminal it includes
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
public:
    DevAssistant(DevDesk& desk, QObject* parent);

    void reload();

    const QString& assistantPrompt() const { return m_prompt; }
    void setAssistantPrompt(const QString& prompt);
    QString promptHint() const;
    QList<Choice> targets() const;
    QString target() const;
    void setTarget(const QString& target);
    WorkAssistantTarget assistantTarget() const { return m_target; }
    QString launchLabel() const;
    QString targetText() const;
    const QString& packet() const { return m_packet; }
    QString transcriptText() const;
    const QString& notice() const { return m_notice; }

    Q_INVOKABLE void launchAssistant();
    Q_INVOKABLE void copyPacket();
    Q_INVOKABLE void dismissNotice();

Q_SIGNALS:
    void changed();
    void copyRequested(const QString& text); ///< onto the clipboard
    void launched(); ///< the terminals show it

private:
    DevDesk& m_desk;
    QString m_prompt;
    WorkAssistantTarget m_target = WorkAssistantTarget::Codex;
    QString m_packet;
    QString m_notice;
};

}
