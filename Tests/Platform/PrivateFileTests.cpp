#include "Platform/PrivateFile.h"
#include "Support/TemporaryHome.h"

#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;

namespace {

mode_t modeOf(const QString& path)
{
    struct stat status {};
    EXPECT_EQ(::stat(qPrintable(path), &status), 0) << path.toStdString();
    return status.st_mode & 07777;
}

}

TEST(PrivateFile, whatStandsOpenIsClosedOnceAndWhatComesLaterIsClosedFromTheStart)
{
    const TemporaryHome home;
    const mode_t before = ::umask(0);
    home.write("share/Corvane/nimblocal.db-wal", "x");
    home.write("share/Corvane/media/main/photo.jpg", "x");
    home.write("elsewhere.txt", "x");
    ASSERT_EQ(::symlink(qPrintable(home.path("elsewhere.txt")), qPrintable(home.path("share/Corvane/link"))), 0);
    ::chmod(qPrintable(home.path("share/Corvane")), 0755);
    ::umask(0027);

    EXPECT_EQ(keepFilesPrivate({ home.path("share/Corvane"), home.path("config/new") }), 0027U);
    EXPECT_EQ(modeOf(home.path("share/Corvane")), 0700U);
    EXPECT_EQ(modeOf(home.path("share/Corvane/media/main")), 0700U);
    EXPECT_EQ(modeOf(home.path("share/Corvane/media/main/photo.jpg")), 0600U);
    EXPECT_EQ(modeOf(home.path("share/Corvane/nimblocal.db-wal")), 0600U);
    EXPECT_EQ(modeOf(home.path("elsewhere.txt")), 0666U) << "what a link leads to is somebody else's";
    EXPECT_EQ(modeOf(home.path("config/new")), 0700U);

    home.write("share/Corvane/media/main/next.jpg", "x");
    EXPECT_EQ(modeOf(home.path("share/Corvane/media/main/next.jpg")), 0600U);
    ::umask(before);
}
