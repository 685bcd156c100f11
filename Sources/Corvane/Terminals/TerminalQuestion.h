#pragma once

#include "Terminals/LumoTerminalSession.h"

#include <QPointer>

namespace corvane {

/// The question about a terminal, one at a time: before a running program is ended, pasted lines run at once, or a
/// program writes to the clipboard. A notice is shown in the same place, and has no action.
class TerminalQuestion : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString text READ text NOTIFY changed) ///< empty for none
    Q_PROPERTY(QString action READ action NOTIFY changed)
    Q_PROPERTY(QString refusal READ refusal NOTIFY changed)
    Q_PROPERTY(bool takesFocus READ takesFocus NOTIFY changed) ///< the user triggered it
public:
    using QObject::QObject;

    const QString& text() const { return m_asked.text; }
    const QString& action() const { return m_asked.action; }
    const QString& refusal() const { return m_asked.refusal; }
    bool takesFocus() const { return m_asked.subject != Subject::Clipboard; }

    void askToClose(LumoTerminalSession& session, const QString& program);
    void askToPaste(LumoTerminalSession& session, const QString& text);
    void askForClipboard(LumoTerminalSession& session, const QString& text); ///< ignored while another one is shown
    bool askToQuit(const QStringList& programs); ///< false if there are none, or if this is already asked
    void tell(LumoTerminalSession& session, const QString& text);
    void withdraw(const LumoTerminalSession& session); ///< which is closed
    Q_INVOKABLE void answer(bool yes);

Q_SIGNALS:
    void changed();
    void closeConfirmed(corvane::LumoTerminalSession* session);
    void pasteConfirmed(corvane::LumoTerminalSession* session, const QString& text);
    void clipboardGranted(const QString& text);
    void quitConfirmed();

private:
    enum class Subject { None, Close, Paste, Clipboard, Quit };
    struct Asked {
        Subject subject = Subject::None;
        QString text {};
        QString action {};
        QString refusal {};
        QPointer<LumoTerminalSession> session {};
        QString data {};
    };

    void ask(const Asked& asked);

    Asked m_asked;
};

}
