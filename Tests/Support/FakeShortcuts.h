#pragma once

#include "Platform/GlobalShortcuts.h"

#include <QHash>

namespace corvane {

/// Global shortcuts on a desktop where other programs have taken some keys.
class FakeShortcuts final : public GlobalShortcuts {
public:
    void bind(const GlobalShortcut& shortcut) override
    {
        bound << shortcut.keys.join(' ');
        states[shortcut.id] = { GlobalShortcutState::Kind::Taken, shortcut.keys.first() };
        for (const QString& keys : shortcut.keys)
            if (!taken.contains(keys) && states[shortcut.id].kind == GlobalShortcutState::Kind::Taken)
                states[shortcut.id] = { GlobalShortcutState::Kind::Bound, keys };
        Q_EMIT stateChanged(shortcut.id);
    }
    void release(const QString& id) override { states.remove(id); }
    GlobalShortcutState state(const QString& id) const override { return states.value(id); }

    QStringList taken;
    QStringList bound;
    QHash<QString, GlobalShortcutState> states;
};

}
