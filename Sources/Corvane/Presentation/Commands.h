#pragma once

#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>

namespace corvane {

/// Where a command's keys work: a head in the sheet of keys, and the column of it.
struct CommandPlace {
    QString name;
    int column = 0;
};

/// Something that a person can do, told once: shortcuts, menus, the palette and the sheet of keys show it from here.
struct Command {
    QString id; ///< such as "archive"; a menu or a button finds its keys by it
    QString label = {}; ///< in the sheet of keys; empty: not there
    QString keys = {}; ///< as they stand there, such as "F1 or ?"
    QStringList sequences = {}; ///< shortcuts of the window; none where the list or field in hand answers the keys
    CommandPlace place = {};
    QString action = {}; ///< in the palette; empty: not there
    std::function<bool()> canRun = {}; ///< none: always
    std::function<void()> run = {}; ///< none: the page in front knows what it means there
    QString menu = {}; ///< in the profile's menu; empty: not there, as the next
    QString tray = {};
};

/// A command whose key is a shortcut of the window.
Command shortcut(const QString& id, const QString& label, const QString& key, const std::function<void()>& run = {});

/// All of these at one place.
QList<Command> at(const CommandPlace& place, QList<Command> commands);

/// A command in the words of the screen.
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

    /// Before the window is made; in the order of the palette and the sheet.
    void add(const QList<Command>& commands) { m_commands += commands; }
    const QList<Command>& all() const { return m_commands; }
    const Command* find(const QString& id) const; ///< null where there is none of that id; until the next `add`

    QList<CommandRow> shortcuts() const;
    int columns() const;
    Q_INVOKABLE QStringList placesIn(int column) const;
    Q_INVOKABLE QList<corvane::CommandRow> commandsAt(const QString& place) const;
    Q_INVOKABLE QString keysOf(const QString& id) const; ///< empty for none
    Q_INVOKABLE void run(const QString& id); ///< nothing where it can't run now

Q_SIGNALS:
    void pageAsked(const QString& id); ///< the page in front runs the command

private:
    QList<Command> m_commands;
};

}
