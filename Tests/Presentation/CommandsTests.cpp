#include "Presentation/Commands.h"

#include "Support/Print.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

TEST(Commands, aShortcutStandsInThePaletteWhileItCanRun)
{
    const Command archive = inPalette(shortcut("archive", "Archive", "E"), [] { return false; });
    EXPECT_EQ(
        archive.id + '|' + archive.label + '|' + archive.keys + '|' + archive.action, "archive|Archive|E|Archive");
    EXPECT_EQ(archive.sequences, QStringList("E"));
    EXPECT_FALSE(archive.canRun());
    Commands commands;
    commands.add(at({ "In the list", 2 }, { archive, { .id = "unlisted" } }));
    EXPECT_EQ(commands.columns(), 3);
    EXPECT_EQ(commands.find("unlisted")->place.name, "In the list");
    EXPECT_EQ(commands.find("none"), nullptr);
    EXPECT_EQ(commands.commandsAt("In the list"), (QList<CommandRow> { { "archive", "Archive", "E", { "E" } } }));
    EXPECT_TRUE(commands.placesIn(0).isEmpty());
    const QSignalSpy asked(&commands, &Commands::pageAsked);
    commands.run("archive");
    commands.run("none");
    EXPECT_EQ(asked.size(), 0);
}

TEST(Commands, oneTableAnswersKeysSheetAndWhetherACommandCanRun)
{
    bool possible = false;
    int runs = 0;
    Commands commands;
    const CommandPlace list { "In the list", 1 };
    commands.add({ { "next", "Next", "Down or J", { "J" }, list }, { "open", "Open", "Return", {}, list } });
    commands.add({ { "quit", "Quit", "Ctrl+Q", {}, { "Everywhere", 0 } },
        { .id = "mute",
            .keys = "M",
            .sequences = { "M" },
            .canRun = [&] { return possible; },
            .run =
                [&] {
                    ++runs;
                } } });

    QStringList shortcuts;
    for (const CommandRow& row : commands.shortcuts())
        shortcuts.append(row.id);
    EXPECT_EQ(shortcuts, (QStringList { "next", "mute" }));
    EXPECT_EQ(commands.columns(), 2);
    EXPECT_EQ(commands.placesIn(1), QStringList("In the list"));
    EXPECT_EQ(commands.commandsAt("In the list").size(), 2);
    EXPECT_EQ(commands.keysOf("open"), "Return");
    EXPECT_EQ(commands.keysOf("unknown"), "");

    QSignalSpy asked(&commands, &Commands::pageAsked);
    commands.run("mute");
    EXPECT_EQ(runs, 0);
    possible = true;
    commands.run("mute");
    commands.run("next");
    EXPECT_EQ(runs, 1);
    ASSERT_EQ(asked.size(), 1) << "what has no meaning of its own goes to the page in front";
    EXPECT_EQ(asked.first().first(), "next");
}
