#include "Care/Backup/Backup.h"

#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

/// A disk with room for so many bytes.
class SmallDisk : public QIODevice {
public:
    explicit SmallDisk(qint64 room)
        : m_room(room)
    {
        open(WriteOnly | Unbuffered);
    }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64 size) override
    {
        m_room -= size;
        if (m_room >= 0)
            return size;
        setErrorString(u"The disk is full."_s);
        return -1;
    }

private:
    qint64 m_room;
};

class TornDisk : public QIODevice {
public:
    TornDisk() { open(ReadOnly | Unbuffered); }

protected:
    qint64 readData(char*, qint64) override
    {
        setErrorString(u"The disk is gone."_s);
        return -1;
    }
    qint64 writeData(const char*, qint64) override { return -1; }
};

QString messageOf(const auto& result)
{
    return result ? u"it worked"_s : result.error().message;
}

class Archives : public testing::Test {
protected:
    /// Writes an archive of these files, the manifest last, and verifies it.
    QString verified(const QMap<QString, QByteArray>& files, const QByteArray& manifest, bool endsThere = true)
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        ArchiveWriter writer(buffer);
        for (auto each = files.begin(); each != files.end(); ++each)
            EXPECT_TRUE(writer.add(each.key(), each.value()));
        EXPECT_TRUE(writer.add(backupNames::manifest, manifest));
        if (!endsThere)
            EXPECT_TRUE(writer.add(u"late"_s, "x"));
        EXPECT_TRUE(writer.finish());
        m_home.write("made.tar", buffer.data());
        return messageOf(verifyBackup(m_home.path(u"made.tar"_s), {}, std::make_shared<BackupProgress>()));
    }

    TemporaryHome m_home;
};

StoredFile stored(const QByteArray& content)
{
    return { content.size(), QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex() };
}

}

TEST_F(Archives, onlyNamesBelowTheirFolderAreSafe)
{
    for (const QString& name : { u"a"_s, u"data/media/grün.jpg"_s, u"..a/.b"_s, u"x"_s.repeated(4096) })
        EXPECT_TRUE(isSafeName(name)) << qPrintable(name.left(50));
    for (const QString& name : { u""_s, u"/a"_s, u"a/"_s, u"a//b"_s, u"."_s, u"a/./b"_s, u".."_s, u"a/../b"_s,
             u"a"_s + QChar(0) + u'b', u"x"_s.repeated(4097) })
        EXPECT_FALSE(isSafeName(name)) << qPrintable(name.left(50));
}

TEST_F(Archives, filesComeBackAsTheyWereAndStopWhenAsked)
{
    const QByteArray film(600'000, 'f');
    m_home.write("film", film);
    QFile::link(m_home.path(u"film"_s), m_home.path(u"link"_s));
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    qint64 seen = 0;
    const PieceSeen count = [&](qint64 bytes) {
        return (seen += bytes) > 0;
    };
    {
        ArchiveWriter writer(buffer);
        EXPECT_EQ(writer.add(u"grün/note"_s, "hello").value(), stored("hello"));
        EXPECT_EQ(writer.addFile(u"film"_s, m_home.path(u"film"_s), count).value(), stored(film));
        EXPECT_EQ(seen, film.size());
        EXPECT_EQ(writer.addFile(u"link"_s, m_home.path(u"link"_s), count).value(), std::nullopt);
        EXPECT_EQ(writer.addFile(u"gone"_s, m_home.path(u"gone"_s), count).value(), std::nullopt);
        EXPECT_TRUE(writer.finish());
    }
    const auto never = [](qint64) {
        return false;
    };
    QBuffer nowhere;
    nowhere.open(QIODevice::WriteOnly);
    EXPECT_EQ(messageOf(ArchiveWriter(nowhere).addFile(u"film"_s, m_home.path(u"film"_s), never)), "Stopped.");

    buffer.seek(0);
    ArchiveReader reader(buffer);
    EXPECT_EQ(reader.next().value(), u"grün/note"_s);
    EXPECT_EQ(reader.content(5).value(), "hello");
    EXPECT_EQ(reader.next().value(), u"film"_s);
    seen = 0;
    EXPECT_EQ(reader.extract(m_home.path(u"out/film"_s), count).value(), stored(film));
    EXPECT_EQ(seen, film.size());
    EXPECT_EQ(m_home.read("out/film"), film);
    EXPECT_EQ(reader.next().value(), std::nullopt);

    const auto atFilm = [&] {
        buffer.seek(0);
        auto again = std::make_unique<ArchiveReader>(buffer);
        EXPECT_TRUE(again->next() && again->next());
        return again;
    };
    EXPECT_NE(messageOf(atFilm()->extract(m_home.path(u"out/film"_s), count)), "it worked") << "a file is there";
    EXPECT_EQ(messageOf(atFilm()->extract(m_home.path(u"out/other"_s), never)), "Stopped.");
    EXPECT_EQ(messageOf(atFilm()->content(film.size() - 1)), "It is too large.");
}

TEST_F(Archives, aDiskThatFailsIsNamed)
{
    QBuffer whole;
    whole.open(QIODevice::WriteOnly);
    const QByteArray content(100'000, 'c');
    m_home.write("file", content);
    const auto all = [](qint64) {
        return true;
    };
    const auto onDiskOf = [&](qint64 room) {
        SmallDisk disk(room);
        ArchiveWriter writer(disk);
        QStringList said { messageOf(writer.add(u"a"_s, content)) };
        said.append(messageOf(writer.addFile(u"b"_s, m_home.path(u"file"_s), all)));
        said.append(messageOf(writer.finish()));
        return said;
    };
    EXPECT_EQ(onDiskOf(1'000'000), QStringList({ u"it worked"_s, u"it worked"_s, u"it worked"_s }));
    EXPECT_EQ(onDiskOf(50'000).first(), "The disk is full.");
    EXPECT_EQ(onDiskOf(150'000).mid(0, 2), QStringList({ u"it worked"_s, u"The disk is full."_s }));
    TornDisk torn;
    EXPECT_EQ(messageOf(ArchiveReader(torn).next()), "The disk is gone.");
}

TEST_F(Archives, everyFileIsComparedWithTheListOfFiles)
{
    const QByteArray picture = "picture";
    Manifest manifest { u"1.2"_s, 1'760'000'000'123, u"/data"_s, true, true, { { u"contact"_s, 3 } },
        { { u"data/a"_s, stored(picture) } } };
    EXPECT_EQ(manifestFrom(manifestText(manifest)).value(), manifest);
    const QByteArray text = manifestText(manifest);
    EXPECT_EQ(verified({ { u"data/a"_s, picture } }, text), "it worked") << "without a database";
    EXPECT_EQ(verified({ { u"data/a"_s, picture } }, text, false), "The file contains extra data.");
    EXPECT_EQ(verified({}, text), "data/a is missing.");
    EXPECT_EQ(verified({ { u"data/a"_s, "Picture" } }, text), "data/a is not as it was saved.");
    EXPECT_EQ(verified({ { u"data/a"_s, picture }, { u"data/b"_s, "" } }, text), "data/b was added later.");
    EXPECT_EQ(verified({}, "{"), "Its list of files cannot be read.");
    EXPECT_EQ(verified({}, "{\"format\":2}"),
        "It was made by another version of the program, in a format that this one cannot read.");
    manifest.files.insert(backupNames::database, stored("no database"));
    EXPECT_TRUE(verified({ { u"data/a"_s, picture }, { backupNames::database, "no database" } }, manifestText(manifest))
            .startsWith("Its database is damaged: "_L1));
    EXPECT_EQ(messageOf(verifyBackup(m_home.path(u"none.tar"_s), {}, std::make_shared<BackupProgress>())),
        u"There is no file %1."_s.arg(m_home.path(u"none.tar"_s)));
    EXPECT_FALSE(isSealedBackup(m_home.path(u"made.tar"_s)));
}
