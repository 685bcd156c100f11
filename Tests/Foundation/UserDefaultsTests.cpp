#include "Foundation/UserDefaults.h"

#include "Foundation/CopyAside.h"
#include "Foundation/Log.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace corvane;

namespace {

const QString file = "config/Corvane/defaults.ini";
const QString name = "nimb.name";

}

TEST(Log, aLineGoesToStandardErrorAsItIs)
{
    const QtMessageHandler before = qInstallMessageHandler(nullptr);
    logToStandardError();
    testing::internal::CaptureStderr();
    log("Store: \"ü\" %1");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Store: \"ü\" %1\n");
    qInstallMessageHandler(before);
}

TEST(UserDefaults, valuesComeBackAsWhatTheyWere)
{
    const TemporaryHome home;
    const QString text = "a, b; \"c\" = %1 ü😀\nnext \\ line";
    {
        UserDefaults defaults(home.path(file));
        EXPECT_EQ(defaults.text(name), std::nullopt);
        defaults.setText(name, text);
        defaults.setText("empty", QString());
        defaults.setBoolean("Corvane.flag", false);
        defaults.setInteger("large", std::numeric_limits<qint64>::min());
        defaults.setText("gone", "x");
        defaults.remove("gone");
    }
    const UserDefaults defaults(home.path(file));
    EXPECT_EQ(defaults.text(name), text);
    EXPECT_EQ(defaults.text("empty"), QString());
    EXPECT_EQ(defaults.boolean("Corvane.flag"), false);
    EXPECT_EQ(defaults.integer("large"), std::numeric_limits<qint64>::min());
    EXPECT_EQ(defaults.text("gone"), std::nullopt);
    EXPECT_EQ(defaults.boolean(name), std::nullopt);
    EXPECT_EQ(defaults.integer(name), std::nullopt);
    EXPECT_FALSE(QFile::exists(home.path(file + ".damaged")));
}

TEST(UserDefaults, aFileEditedByHandIsUnderstood)
{
    const TemporaryHome home;
    home.write(file, "nimb.name=Ann, Bob\non=TRUE\noff=0\nsize= 12 \n");
    const UserDefaults defaults(home.path(file));
    EXPECT_EQ(defaults.text(name), "Ann, Bob");
    EXPECT_EQ(defaults.boolean("on"), true);
    EXPECT_EQ(defaults.boolean("off"), false);
    EXPECT_EQ(defaults.integer("size"), 12);
}

TEST(UserDefaults, aFileThatDoesNotReadIsKeptBeforeItIsWrittenOver)
{
    const TemporaryHome home;
    const LogCapture log;
    const QByteArray garbage = QByteArray("\x7f"
                                          "ELF\0\0\xff[unclosed\nno value here\n",
        30);
    home.write(file, garbage);
    const QString copy = file + ".damaged";
    {
        UserDefaults defaults(home.path(file));
        EXPECT_EQ(defaults.text(name), std::nullopt);
        defaults.synchronise();
        EXPECT_FALSE(QFile::exists(home.path(copy))) << "nothing is written, so nothing is copied";
        EXPECT_EQ(home.read(file), garbage);
        defaults.setText(name, "new");
        defaults.setText(name, "newer");
    }
    EXPECT_EQ(home.read(copy), garbage);
    EXPECT_EQ(log.lines(), QStringList(home.path(file) + " does not read; a copy is kept as " + home.path(copy)));
    EXPECT_FALSE(QFile::exists(home.path(copy + "-2")));
    EXPECT_EQ(UserDefaults(home.path(file)).text(name), "newer");

    home.write(file, "second " + garbage);
    UserDefaults(home.path(file)).setText(name, "again");
    EXPECT_EQ(home.read(copy), garbage) << "an earlier copy stays";
    EXPECT_EQ(home.read(copy + "-2"), "second " + garbage);
}

TEST(UserDefaults, aDamagedFileThatCannotBeCopiedIsLeftAloneAndChangesLastUntilTheEnd)
{
    const TemporaryHome home;
    const LogCapture log;
    const QString longName = "config/Corvane/" + QString(250, u'd'); // the backup copy's name would be too long
    home.write(longName, "[unclosed\n");
    UserDefaults defaults(home.path(longName));
    defaults.setText(name, "new");
    EXPECT_EQ(defaults.text(name), "new");
    defaults.remove(name);
    EXPECT_EQ(defaults.text(name), std::nullopt);
    defaults.synchronise();
    EXPECT_EQ(home.read(longName), "[unclosed\n");
    EXPECT_EQ(log.lines(), QStringList(home.path(longName) + " does not read and cannot be copied; it is left alone"));
    EXPECT_EQ(copyAside(home.path("config")), std::nullopt) << "a folder is no file";
}
