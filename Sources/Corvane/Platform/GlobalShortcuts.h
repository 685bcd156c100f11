#pragma once

#include <QObject>
#include <QStringList>

namespace corvane {

/// A key that works in every program.
struct GlobalShortcut {
    QString id; ///< such as "capture"
    QString description; ///< what it does, for the desktop's list of shortcuts
    QStringList keys; ///< such as "Ctrl+Alt+N", the preferred first; a portable QKeySequence of one key
};

struct GlobalShortcutState {
    enum class Kind {
        Unbound,
        Waiting, ///< for the desktop, which may ask the user
        Bound,
        Taken, ///< each of its keys belongs to another program
        Unavailable, ///< this desktop has no such keys for programs, or the user said no
    };

    Kind kind = Kind::Unbound;
    QString keys = {}; ///< that work while it is bound, or the preferred ones while they are taken

    bool operator==(const GlobalShortcutState&) const = default;
};

/// The keys that the program answers from the background.
class GlobalShortcuts : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// The first of its keys that is free works from now on, in place of an earlier shortcut with the same id.
    virtual void bind(const GlobalShortcut& shortcut) = 0;
    virtual void release(const QString& id) = 0;
    virtual GlobalShortcutState state(const QString& id) const = 0;
    virtual bool asksUser() const { return false; } ///< about each change of the keys

Q_SIGNALS:
    void pressed(const QString& id); ///< once, however long the key is held
    void released(const QString& id);
    void stateChanged(const QString& id);
};

}
