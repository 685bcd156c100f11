#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Scheduler.h"
#include "Platform/Linux/Input/FocusedField.h"
#include "Platform/Linux/Input/X11Clipboard.h"
#include "Platform/Linux/Input/X11Screen.h"
#include "Platform/TextInsertion.h"

namespace corvane {

/// Inserts through the clipboard and the paste shortcut of the active program. When the program reads the clipboard, it
/// pasted; if none does within a second, the text stays on the clipboard.
class X11TextInsertion final : public TextInsertion {
    Q_OBJECT
public:
    /// The scheduler outlives it. The bus tells whether the focused field is a password field. An empty display is the
    /// one of the environment.
    X11TextInsertion(Scheduler& scheduler, const QDBusConnection& session, const QByteArray& display = {});
    ~X11TextInsertion() override;

    InsertionWay way() const override;
    bool isBoundToFocus() const override { return false; }
    void aim() override;
    void insert(const QString& text, Done done) override;

private:
    struct PasteKeys {
        X11Clipboard::Selection selection = X11Clipboard::Selection::Clipboard;
        QList<xcb_keysym_t> symbols;
    };

    PasteKeys pasteKeys() const; ///< of the active program
    void lookAtField();
    void insertInto(const FocusedField& field);
    void lend();
    void pressOnceKeysAreUp(int tries);
    void onTaken();
    void leaveOnClipboard();
    void end(InsertionOutcome outcome);

    Scheduler& m_scheduler;
    QDBusConnection m_session;
    X11Screen m_screen;
    X11Clipboard m_clipboard;
    BackgroundQueue m_background;
    std::unique_ptr<Timer> m_timer;
    xcb_window_t m_target = 0;
    bool m_targetIsGone = false;
    PasteKeys m_keys;
    bool m_isPressed = false;
    QString m_text;
    Done m_done; ///< of the current insertion
};

}
