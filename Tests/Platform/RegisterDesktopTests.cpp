#include "Support/Await.h"
#include "Support/Places.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const QString entry = "share/applications/com.nimb.corvane.desktop";

class RegisterDesktopTest : public testing::Test {
protected:
    /// Runs a command and returns its output; empty if all is well.
    QString run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", home.paths().home);
        environment.insert("XDG_DATA_HOME", home.path("share"));
        environment.insert("XDG_CONFIG_HOME", home.path("config"));
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), 0);
        return QString::fromUtf8(process.readAll());
    }

    void registerProgram(const QString& path)
    {
        home.write(path, "#!/bin/sh\nprintf '%s|' \"$@\" > \"$0.part\" && mv \"$0.part\" \"$0.opened\"\n");
        QFile::setPermissions(home.path(path), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        EXPECT_EQ(run(CORVANE_SOURCE "/tools/register-desktop", { home.path(path) }), "");
    }

    TemporaryHome home;
};

}

TEST_F(RegisterDesktopTest, aLinkOpensTheProgramWhereverItWasBuilt)
{
    const QString program = "it's a \"b`uild\" $HOME\\dir/corvane";
    registerProgram(program);
    EXPECT_EQ(run("gio", { "launch", home.path(entry), "nimb-companion://auth?code=a%20b" }), "");
    ASSERT_TRUE(await([&] { return QFileInfo::exists(home.path(program + ".opened")); }));
    EXPECT_EQ(home.read(program + ".opened"), "nimb-companion://auth?code=a%20b|");
    EXPECT_TRUE(home.read(entry).contains("MimeType=x-scheme-handler/nimb-companion;"));
    EXPECT_TRUE(QFileInfo::exists(home.path("share/icons/hicolor/scalable/apps/com.nimb.corvane.svg")));
}

TEST_F(RegisterDesktopTest, aSecondTimeChangesNothingAndAMovedProgramIsFollowed)
{
    registerProgram("one/corvane");
    const QDateTime before = QFileInfo(home.path(entry)).fileTime(QFile::FileMetadataChangeTime);
    registerProgram("one/corvane");
    EXPECT_EQ(QFileInfo(home.path(entry)).fileTime(QFile::FileMetadataChangeTime), before);
    registerProgram("two/corvane");
    EXPECT_TRUE(home.read(entry).contains("/two/corvane"));
    EXPECT_FALSE(home.read(entry).contains("/one/corvane"));
}
