#include "Platform/AppPaths.h"

#include "Platform/ProfileLock.h"
#include "Support/Environment.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace corvane;

TEST(AppPaths, theEnvironmentNamesThePlacesByAbsolutePaths)
{
    Environment environment { { "HOME", "/people/ana" }, { "XDG_DATA_HOME", "/data/./ana" },
        { "XDG_CONFIG_HOME", "/settings/ana/" }, { "CORVANE_RESOURCES", "/resources/one/.." } };
    AppPaths paths = AppPaths::fromEnvironment();
    EXPECT_EQ(paths.home, "/people/ana");
    EXPECT_EQ(paths.applicationSupport, "/data/ana/Corvane");
    EXPECT_EQ(paths.defaultsFile, "/settings/ana/Corvane/defaults.ini");
    EXPECT_EQ(paths.resources, "/resources");
    environment.set("XDG_DATA_HOME", "data");
    environment.set("XDG_CONFIG_HOME", {});
    environment.set("CORVANE_RESOURCES", "beside");
    paths = AppPaths::fromEnvironment();
    EXPECT_EQ(paths.applicationSupport, "/people/ana/.local/share/Corvane") << "a relative path is none";
    EXPECT_EQ(paths.defaultsFile, "/people/ana/.config/Corvane/defaults.ini");
    EXPECT_EQ(paths.resources, QDir::current().filePath("beside"));
    environment.set("CORVANE_RESOURCES", {});
    const QDir program(QCoreApplication::applicationDirPath());
    EXPECT_EQ(AppPaths::fromEnvironment().resources,
        program.exists("local-schema") ? program.path() : QDir::cleanPath(program.filePath("../share/corvane")));
}

TEST(ProfileLock, oneHoldsAFolderAtATime)
{
    const TemporaryHome home;
    EXPECT_FALSE(ProfileLock::take(home.path("none"))) << "it does not create the folder";
    home.write("profile/x", {});
    auto lock = ProfileLock::take(home.path("profile"));
    ASSERT_TRUE(lock);
    EXPECT_EQ(QFile::permissions(home.path("profile/instance.lock")) & (QFile::ReadGroup | QFile::ReadOther), 0);
    EXPECT_FALSE(ProfileLock::take(home.path("profile")));
    lock.reset();
    EXPECT_TRUE(ProfileLock::take(home.path("profile")));
}
