#include "Platform/Linux/Input/WaylandTextInsertion.h"

#include "Platform/Linux/Input/OwnWindow.h"
#include "Platform/Linux/Input/X11TextInsertion.h"
#include "Platform/Linux/Services.h"

namespace corvane {

namespace {

constexpr Milliseconds limit { 6000 };
constexpr Milliseconds giveBackTime { 500 }; ///< in which the program in front reads the clipboard

}

WaylandTextInsertion::WaylandTextInsertion(Scheduler& scheduler, const QDBusConnection& session)
    : m_scheduler(scheduler)
    , m_session(session)
    , m_keyboard(session)
    , m_typesKeyboardOnly(qgetenv("XDG_CURRENT_DESKTOP").split(':').contains("KDE"))
{
    connect(&m_keyboard, &PortalKeyboard::changed, this, &TextInsertion::wayChanged);
}

WaylandTextInsertion::~WaylandTextInsertion() = default;

InsertionWay WaylandTextInsertion::way() const
{
    if (m_keyboard.state() != PortalKeyboard::State::Absent)
        return InsertionWay::Typing;
    return hasClipboardTools() && hasKeyTool() ? InsertionWay::PasteKeys : InsertionWay::None;
}

/// Permission to type is requested before there is a text, since the desktop's dialog takes the focus.
void WaylandTextInsertion::aim()
{
    m_background.run<std::optional<FocusedField>>([session = m_session] { return findFocusedField(session); },
        [this](const std::optional<FocusedField>& field) {
            if (!field || (!field->isEditable && !field->isPassword))
                m_keyboard.ask();
        });
}

void WaylandTextInsertion::insert(const QString& text, Done done)
{
    if (m_done) {
        QMetaObject::invokeMethod(
            this, [done = std::move(done)] { done(InsertionOutcome::Missed); }, Qt::QueuedConnection);
        return;
    }
    m_text = text;
    m_done = std::move(done);
    if (const auto outcome = insertIntoOwnWindow(text))
        return end(*outcome);
    m_limit = m_scheduler.after(limit, [this] { end(InsertionOutcome::Missed); });
    m_background.run<std::optional<FocusedField>>([session = m_session] { return findFocusedField(session); },
        [this](const std::optional<FocusedField>& field) {
            if (!m_done)
                return; // it took too long
            if (field && field->isPassword)
                end(InsertionOutcome::Password);
            else if (field && field->isEditable)
                insertInto(*field);
            else
                type();
        });
}

void WaylandTextInsertion::insertInto(const FocusedField& field)
{
    m_background.run<bool>(
        [session = m_session, field, text = m_text] { return corvane::insertInto(session, field, text); },
        [this](bool isInserted) { isInserted ? end(InsertionOutcome::Inserted) : type(); });
}

void WaylandTextInsertion::type()
{
    const bool mayType = m_keyboard.state() == PortalKeyboard::State::Granted;
    if (way() == InsertionWay::PasteKeys || (mayType && m_typesKeyboardOnly && hasClipboardTools()))
        return paste();
    if (!mayType)
        return end(InsertionOutcome::Missed);
    m_limit.reset(); // a long text takes its time
    m_keyboard.type(
        m_text, [this](bool isTyped) { end(isTyped ? InsertionOutcome::Inserted : InsertionOutcome::Missed); });
}

void WaylandTextInsertion::paste()
{
    m_givesBack.reset();
    m_background.run<std::optional<KeptSelections>>([text = m_text] { return lendSelections(text); },
        [this](const std::optional<KeptSelections>& kept) {
            if (!kept)
                return end(InsertionOutcome::Missed);
            if (!m_kept) // otherwise it still contains our previous text
                m_kept = kept;
            if (m_keyboard.state() == PortalKeyboard::State::Granted)
                m_keyboard.pressPaste([this](bool isPressed) { onPressed(isPressed); });
            else
                m_background.run<bool>(pressPaste, [this](bool isPressed) { onPressed(isPressed); });
        });
}

void WaylandTextInsertion::onPressed(bool isPressed)
{
    if (isPressed)
        m_givesBack = m_scheduler.after(giveBackTime, [this] { giveBack(); });
    else
        m_kept.reset();
    end(isPressed ? InsertionOutcome::Inserted : InsertionOutcome::Copied);
}

void WaylandTextInsertion::giveBack()
{
    m_givesBack.reset();
    m_background.run<bool>(
        [kept = *std::exchange(m_kept, std::nullopt), text = m_text] {
            giveBackSelections(kept, text);
            return true;
        },
        [](bool) {});
}

void WaylandTextInsertion::end(InsertionOutcome outcome)
{
    m_limit.reset();
    if (const Done done = std::exchange(m_done, nullptr))
        QMetaObject::invokeMethod(this, [done, outcome] { done(outcome); }, Qt::QueuedConnection);
}

std::unique_ptr<TextInsertion> makeTextInsertion(Scheduler& scheduler)
{
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return std::make_unique<WaylandTextInsertion>(scheduler, QDBusConnection::sessionBus());
    return std::make_unique<X11TextInsertion>(scheduler, QDBusConnection::sessionBus());
}

}
