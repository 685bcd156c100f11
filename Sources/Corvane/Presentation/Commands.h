#pragma once

#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>

namespace corvane {

/// Where a command's keys work: a heading in the sheet of keys, and its column.
struct CommandPlace {
    QString name;
    int column = 0;
};

/// Something that the user can do, declared once: shortcuts, menus, the palette and the sheet of keys are built from
/// it.
struct Command {
    QString id; ///< such as "archive"; menus and buttons look up its keys by it
    QString label = {}; ///< in the sheet of keys; empty: not listed
    QString keys = {}; ///< as shown there, such as "F1 or ?"
    QStringList sequences = {}; ///< window shortcuts; none if the focused list or field handles the keys
    CommandPlace place = {};
    QString action = {}; ///< in the palette; empty: not listed
    std::function<bool()> canRun = {}; ///< none: always
    std::function<void()> run = {}; ///< none: the current page handles it
    QString menu = {}; ///< in the profile menu; empty: not listed, as the next
    QString tray = {};
};

/// A command whose key is a window shortcut.
Command shortcut(const QString& id, const QString& label, const QString& key, const std::function<void()>& run = {});

/// The command with its label in the palette, too. It runs only while `canRun` says so.
Command inPalette(Command command, const std::function<bool()>& canRun = {});

/// Puts all of these at one place.
QList<Command> at(const CommandPlace& place, QList<Command> commands);

/// A command as QML shows it.
class CommandRow {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString keys MEMBER keys)
    Q_PROPERTY(QStringList sequences MEMBER sequences)
public:
    QString id;
    QString label;
    QString keys;
    QStringList sequences;

    bool operator==(const CommandRow&) const = default;
};

/// The table of commands: each room's factory adds its own.
class Commands : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::CommandRow> shortcuts READ shortcuts CONSTANT)
    Q_PROPERTY(int columns READ columns CONSTANT) ///< of the sheet of keys
public:
    using QObject::QObject;

    /// Before the window is created; in the order of the palette and the sheet.
    void add(const QList<Command>& commands) { m_commands += commands; }
    const QList<Command>& all() const { return m_commands; }
    const Command* find(const QString& id) const; ///< null if there is none; valid until the next `add`

    QList<CommandRow> shortcuts() const;
    int columns() const;
    Q_INVOKABLE QStringList placesIn(int column) const;
    Q_INVOKABLE QList<corvane::CommandRow> commandsAt(const QString& place) const;
    Q_INVOKABLE QString keysOf(const QString& id) const; ///< empty for none
    Q_INVOKABLE void run(const QString& id); ///< does nothing if it can't run now

Q_SIGNALS:
    void pageAsked(const QString& id); ///< the current page runs the command

private:
    QList<Command> m_commands;
};

}
