#include "Platform/Linux/Input/X11TextInsertion.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Input/OwnWindow.h"

#include <QSet>

namespace corvane {

namespace {

constexpr Milliseconds focusTime { 120 }; ///< for a program to get the focus
constexpr Milliseconds keyPoll { 20 };
constexpr int keyPolls = 100;
constexpr Milliseconds pasteTime { 1000 }; ///< for the program to request the clipboard
constexpr Milliseconds giveBackTime { 300 }; ///< some programs request it twice

// From X11/keysymdef.h.
constexpr xcb_keysym_t shiftKey = 0xffe1;
constexpr xcb_keysym_t controlKey = 0xffe3;
constexpr xcb_keysym_t insertKey = 0xff63;
constexpr xcb_keysym_t letterV = 'v';

/// Terminals that paste the clipboard with Ctrl+Shift+V, as Ctrl+V is a character there.
const QSet<QString> terminals { u"gnome-terminal-server"_s, u"gnome-terminal"_s, u"konsole"_s, u"yakuake"_s,
    u"xfce4-terminal"_s, u"mate-terminal"_s, u"lxterminal"_s, u"qterminal"_s, u"terminator"_s, u"tilix"_s, u"guake"_s,
    u"kitty"_s, u"alacritty"_s, u"ghostty"_s, u"com.mitchellh.ghostty"_s, u"org.wezfurlong.wezterm"_s, u"kgx"_s,
    u"ptyxis"_s, u"deepin-terminal"_s, u"contour"_s };

/// Terminals that only paste the primary selection, with Shift+Insert.
const QSet<QString> oldTerminals { u"xterm"_s, u"uxterm"_s, u"urxvt"_s, u"rxvt"_s, u"st-256color"_s, u"st"_s,
    u"mlterm"_s };

}

X11TextInsertion::X11TextInsertion(Scheduler& scheduler, const QDBusConnection& session, const QByteArray& display)
    : m_scheduler(scheduler)
    , m_session(session)
    , m_screen(display)
    , m_clipboard(display)
{
    connect(&m_clipboard, &X11Clipboard::taken, this, &X11TextInsertion::onTaken);
}

X11TextInsertion::~X11TextInsertion() = default;

InsertionWay X11TextInsertion::way() const
{
    return m_screen.canPress() ? InsertionWay::PasteKeys : InsertionWay::None;
}

void X11TextInsertion::aim()
{
    m_target = m_screen.front();
}

void X11TextInsertion::insert(const QString& text, Done done)
{
    if (m_done) {
        QMetaObject::invokeMethod(
            this, [done = std::move(done)] { done(InsertionOutcome::Missed); }, Qt::QueuedConnection);
        return;
    }
    if (m_timer)
        m_clipboard.giveBack(); // of the previous text
    m_text = text;
    m_done = std::move(done);
    m_isPressed = false;
    m_targetIsGone = m_target != 0 && !m_screen.has(m_target);
    if (m_target != 0 && !m_targetIsGone && m_screen.front() != m_target)
        m_screen.bringToFront(m_target);
    m_timer = m_scheduler.after(focusTime, [this] { lookAtField(); });
}

void X11TextInsertion::lookAtField()
{
    if (const auto outcome = insertIntoOwnWindow(m_text))
        return end(*outcome);
    m_background.run<std::optional<FocusedField>>([session = m_session] { return findFocusedField(session); },
        [this](const std::optional<FocusedField>& field) {
            if (field && field->isPassword)
                end(InsertionOutcome::Password);
            else if (field && field->isEditable && !m_screen.canPress())
                insertInto(*field);
            else
                lend();
        });
}

void X11TextInsertion::insertInto(const FocusedField& field)
{
    m_background.run<bool>(
        [session = m_session, field, text = m_text] { return corvane::insertInto(session, field, text); },
        [this](bool isInserted) { isInserted ? end(InsertionOutcome::Inserted) : lend(); });
}

void X11TextInsertion::lend()
{
    m_keys = pasteKeys();
    m_clipboard.lend(m_keys.selection, m_text, [this](bool isLent) {
        if (!isLent)
            return end(InsertionOutcome::Missed);
        pressOnceKeysAreUp(keyPolls);
    });
}

/// Modifiers that the user still holds would combine with our keys.
void X11TextInsertion::pressOnceKeysAreUp(int tries)
{
    const bool isHeld = m_screen.isModifierHeld();
    if (isHeld && tries > 0) {
        m_timer = m_scheduler.after(keyPoll, [this, tries] { pressOnceKeysAreUp(tries - 1); });
        return;
    }
    m_isPressed = !isHeld && m_screen.front() != 0 && m_screen.press(m_keys.symbols);
    if (!m_isPressed)
        return leaveOnClipboard();
    m_timer = m_scheduler.after(pasteTime, [this] { leaveOnClipboard(); });
}

void X11TextInsertion::onTaken()
{
    if (!m_isPressed)
        return; // read by a clipboard manager
    m_timer = m_scheduler.after(giveBackTime, [this] {
        m_timer.reset();
        m_targetIsGone ? m_clipboard.leave() : m_clipboard.giveBack();
    });
    end(InsertionOutcome::Inserted);
}

void X11TextInsertion::leaveOnClipboard()
{
    m_timer.reset();
    m_isPressed = false;
    if (m_keys.selection == X11Clipboard::Selection::Clipboard) {
        m_clipboard.leave();
        return end(InsertionOutcome::Copied);
    }
    m_clipboard.giveBack();
    m_clipboard.lend(X11Clipboard::Selection::Clipboard, m_text, [this](bool isLent) {
        m_clipboard.leave();
        end(isLent ? InsertionOutcome::Copied : InsertionOutcome::Missed);
    });
}

void X11TextInsertion::end(InsertionOutcome outcome)
{
    if (const Done done = std::exchange(m_done, nullptr))
        QMetaObject::invokeMethod(this, [done, outcome] { done(outcome); }, Qt::QueuedConnection);
}

X11TextInsertion::PasteKeys X11TextInsertion::pasteKeys() const
{
    using Selection = X11Clipboard::Selection;
    for (const QString& name : m_screen.classOf(m_screen.front())) {
        if (oldTerminals.contains(name))
            return { Selection::Primary, { shiftKey, insertKey } };
        if (terminals.contains(name))
            return { Selection::Clipboard, { controlKey, shiftKey, letterV } };
    }
    // Shift+Insert works on layouts without the letter.
    if (!m_screen.hasKey(letterV))
        return { Selection::Clipboard, { shiftKey, insertKey } };
    return { Selection::Clipboard, { controlKey, letterV } };
}

}
