#include "Presentation/Commands.h"

#include <algorithm>

namespace corvane {

namespace {

CommandRow rowOf(const Command& command)
{
    return { command.id, command.label, command.keys, command.sequences };
}

}

Command shortcut(const QString& id, const QString& label, const QString& key, const std::function<void()>& run)
{
    return { .id = id, .label = label, .keys = key, .sequences = { key }, .run = run };
}

Command inPalette(Command command, const std::function<bool()>& canRun)
{
    command.action = command.label;
    command.canRun = canRun;
    return command;
}

QList<Command> at(const CommandPlace& place, QList<Command> commands)
{
    for (Command& command : commands)
        command.place = place;
    return commands;
}

QList<CommandRow> Commands::shortcuts() const
{
    QList<CommandRow> rows;
    for (const Command& command : m_commands) {
        if (!command.sequences.isEmpty())
            rows.append(rowOf(command));
    }
    return rows;
}

int Commands::columns() const
{
    int columns = 0;
    for (const Command& command : m_commands)
        columns = std::max(columns, command.place.column + 1);
    return columns;
}

QStringList Commands::placesIn(int column) const
{
    QStringList places;
    for (const Command& command : m_commands) {
        if (!command.label.isEmpty() && command.place.column == column && !places.contains(command.place.name))
            places.append(command.place.name);
    }
    return places;
}

QList<CommandRow> Commands::commandsAt(const QString& place) const
{
    QList<CommandRow> rows;
    for (const Command& command : m_commands) {
        if (!command.label.isEmpty() && command.place.name == place)
            rows.append(rowOf(command));
    }
    return rows;
}

QString Commands::keysOf(const QString& id) const
{
    const Command* const command = find(id);
    return command ? command->keys : QString();
}

void Commands::run(const QString& id)
{
    const Command* const command = find(id);
    if (!command || (command->canRun && !command->canRun()))
        return;
    if (command->run)
        command->run();
    else
        Q_EMIT pageAsked(id);
}

const Command* Commands::find(const QString& id) const
{
    const auto found = std::ranges::find(m_commands, id, &Command::id);
    return found == m_commands.end() ? nullptr : &*found;
}

}
