#include "Platform/PrivateFile.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
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

class PrivateFileTest : public testing::Test {
protected:
    PrivateFileTest() { ::umask(0); }
    ~PrivateFileTest() override { ::umask(before); }

    QStringList filesIn(const QString& folder) const
    {
        return QDir(home.path(folder)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    const TemporaryHome home;
    const mode_t before = ::umask(0);
};

TEST_F(PrivateFileTest, aFileIsReplacedWholeOrNotAtAll)
{
    const QString path = home.path("a/b/file");
    EXPECT_TRUE(writePrivateFile(path, "old"));
    for (const Outlives outlives : { Outlives::PowerCut, Outlives::Program }) {
        const QByteArray content(outlives == Outlives::Program ? 3'000'000 : 0, 'x');
        EXPECT_TRUE(writePrivateFile(path, content, outlives));
        EXPECT_EQ(home.read("a/b/file"), content);
    }
    EXPECT_EQ(modeOf(path), 0600U);
    home.write("folder/file", "kept");
    EXPECT_FALSE(writePrivateFile(home.path("folder"), "a folder stands there"));
    EXPECT_FALSE(writePrivateFile(home.path("folder/file/x"), "a file stands there"));
    EXPECT_FALSE(writePrivateFile("/proc/none", "nobody may create it"));

    rlimit files {};
    ::getrlimit(RLIMIT_FSIZE, &files);
    const auto ignored = ::signal(SIGXFSZ, SIG_IGN);
    const rlimit small { 1000, files.rlim_max };
    ::setrlimit(RLIMIT_FSIZE, &small);
    const bool written = writePrivateFile(home.path("folder/file"), QByteArray(1001, 'x'));
    const auto copied = copyPrivateFile(path, home.path("copies/file"), 0, [](QByteArrayView) { });
    ::setrlimit(RLIMIT_FSIZE, &files);
    ::signal(SIGXFSZ, ignored);
    EXPECT_FALSE(written) << "only a part of it";
    EXPECT_EQ(home.read("folder/file"), "kept");
    EXPECT_EQ(copied.error().message, "File too large.");
    EXPECT_EQ(filesIn("copies"), QStringList());
    EXPECT_EQ(filesIn("folder"), QStringList("file")) << "nothing unfinished stays behind";
    EXPECT_EQ(filesIn({}), QStringList());
}

TEST_F(PrivateFileTest, aCopyIsPrivateAndCompleteOrThereIsNone)
{
    QByteArray content;
    for (int i = 0; i < 100'000; ++i)
        content += QByteArray::number(i);
    home.write("from", content);
    QByteArray seen;
    const auto copy = [&](const QString& from, const QString& to, qint64 limit = 0) {
        seen.clear();
        const auto size
            = copyPrivateFile(home.path(from), home.path(to), limit, [&](QByteArrayView piece) { seen.append(piece); });
        return size ? QString::number(*size) : size.error().message;
    };
    const QString size = QString::number(content.size());
    EXPECT_EQ(copy("from", "one/two/to"), size);
    EXPECT_EQ(home.read("one/two/to"), content);
    EXPECT_EQ(seen, content);
    EXPECT_EQ(modeOf(home.path("one/two/to")), 0600U);
    EXPECT_EQ(modeOf(home.path("one")), 0700U);
    EXPECT_EQ(copy("from", "one/two/to"), "File exists.");
    EXPECT_EQ(copy("from", "exact", content.size()), size);
    EXPECT_EQ(copy("from", "less", content.size() - 1), "It is too large.");
    EXPECT_FALSE(QFile::exists(home.path("less")));
    EXPECT_EQ(copy("gone", "to"), "No such file or directory.");
    EXPECT_EQ(copy("one", "to"), "It is not a regular file.");
    ASSERT_EQ(::mkfifo(qPrintable(home.path("pipe")), 0600), 0);
    EXPECT_EQ(copy("pipe", "to"), "It is not a regular file.");
    EXPECT_EQ(copy("from", "from/to"), "Not a directory.") << "the folder is a file";
    EXPECT_EQ(copyPrivateFile(home.path("from"), "/proc/none/to", 0, [](QByteArrayView) { }).error().message,
        "No such file or directory.");
}

TEST_F(PrivateFileTest, onlyAPlainFileIsOpenedAndOnlyANewOneMade)
{
    home.write("plain", "content");
    ASSERT_EQ(::symlink(qPrintable(home.path("plain")), qPrintable(home.path("link"))), 0);
    ASSERT_EQ(::mkfifo(qPrintable(home.path("pipe")), 0600), 0);
    const auto file = openPlainFile(home.path("plain"));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->readAll(), "content");
    for (const char* other : { "link", "pipe", "gone", "" })
        EXPECT_FALSE(openPlainFile(home.path(other))) << other;

    {
        const auto made = makePrivateFile(home.path("new/folder/file"));
        ASSERT_TRUE(made);
        EXPECT_EQ((*made)->write("abc"), 3);
        EXPECT_EQ(home.read("new/folder/file"), "abc") << "at once";
    }
    EXPECT_EQ(modeOf(home.path("new/folder/file")), 0600U);
    EXPECT_EQ(modeOf(home.path("new/folder")), 0700U);
    for (const char* existing : { "plain", "link" })
        EXPECT_EQ(makePrivateFile(home.path(existing)).error().message, "File exists.");
    EXPECT_EQ(makePrivateFile(home.path("plain/x")).error().message, "Not a directory.");
    EXPECT_EQ(home.read("plain"), "content");
}

TEST_F(PrivateFileTest, aFileInPiecesTakesItsPlaceOnlyWhenItIsCommitted)
{
    home.write("work/keep", "");
    home.write("place/file", "old");
    {
        PrivateSaveFile save(home.path("place/file"), home.path("work"));
        ASSERT_TRUE(save.open());
        EXPECT_EQ(save.file().write("new"), 3);
        EXPECT_EQ(filesIn("work").size(), 2);
        EXPECT_EQ(home.read("place/file"), "old");
    }
    EXPECT_EQ(filesIn("work"), QStringList("keep"));
    EXPECT_EQ(home.read("place/file"), "old");
    {
        PrivateSaveFile save(home.path("place/file"), home.path("work"));
        ASSERT_TRUE(save.open());
        save.file().write("new");
        EXPECT_TRUE(save.commit());
        EXPECT_FALSE(save.file().isOpen());
        EXPECT_EQ(home.read("place/file"), "new");
    }
    EXPECT_EQ(home.read("place/file"), "new") << "what is committed stays";
    EXPECT_EQ(modeOf(home.path("place/file")), 0600U);
    EXPECT_EQ(filesIn("work"), QStringList("keep"));
    {
        PrivateSaveFile save(home.path("no/place/file"), home.path("work"));
        ASSERT_TRUE(save.open());
        EXPECT_EQ(save.commit().error().message, "No such file or directory.");
    }
    EXPECT_EQ(filesIn("work"), QStringList("keep"));
    PrivateSaveFile nowhere(home.path("place/file"), home.path("nowhere"));
    EXPECT_EQ(nowhere.open().error().message, "No such file or directory.");
}
