#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Scheduler.h"
#include "Platform/Linux/Input/FocusedField.h"
#include "Platform/Linux/Input/PortalKeyboard.h"
#include "Platform/Linux/Input/WaylandPaste.h"
#include "Platform/TextInsertion.h"

namespace corvane {

/// Inserts text through the accessibility bus if the focused field supports it, else types through the portal. Where
/// the desktop has no such portal, or types less than every character, it pastes, if wl-clipboard and wtype are
/// installed.
class WaylandTextInsertion final : public TextInsertion {
    Q_OBJECT
public:
    /// The scheduler outlives it.
    WaylandTextInsertion(Scheduler& scheduler, const QDBusConnection& session);
    ~WaylandTextInsertion() override;

    InsertionWay way() const override;
    bool isBoundToFocus() const override { return true; }
    void aim() override;
    void insert(const QString& text, Done done) override;

private:
    void insertInto(const FocusedField& field);
    void type();
    void paste();
    void onPressed(bool isPressed); ///< the keys that paste
    void giveBack();
    void end(InsertionOutcome outcome);

    Scheduler& m_scheduler;
    QDBusConnection m_session;
    PortalKeyboard m_keyboard;
    BackgroundQueue m_background;
    const bool m_typesKeyboardOnly; ///< the portal leaves out what is not on the keyboard
    std::unique_ptr<Timer> m_limit;
    std::unique_ptr<Timer> m_givesBack;
    std::optional<KeptSelections> m_kept; ///< to be given back
    QString m_text;
    Done m_done; ///< of the current insertion
};

}
