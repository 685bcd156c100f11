#include "Foundation/Literals.h"
#include "Inbox/Thread/MediaFile.h"

#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QtEndian>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace corvane;

namespace {

class MediaFileTest : public testing::Test {
protected:
    MediaFileTest() { QDir().mkpath(m_home.path("media/main")); }

    QString put(const QString& name, const QByteArray& content) const
    {
        m_home.write("media/main/" + name, content);
        return m_home.path("media/main/" + name);
    }
    QString picture(const QString& name, const char* format) const
    {
        QImage image(64, 64, QImage::Format_RGB32);
        image.fill(0x336699);
        const QString path = m_home.path("media/main/" + name);
        EXPECT_TRUE(image.save(path, format));
        return path;
    }
    static void cut(const QString& path)
    {
        QFile file(path);
        EXPECT_TRUE(file.resize(file.size() - 20));
    }

    MediaProblem check(const QString& path, const QString& kind) const
    {
        return checkMedia(path, kind, { m_home.path("media") });
    }
    QString text(const QString& path, const QString& kind) const { return describe(check(path, kind), kind); }

    TemporaryHome m_home;
};

QByteArray box(const QByteArray& name, const QByteArray& content)
{
    const auto length = qToBigEndian(quint32(content.size() + 8));
    return QByteArray(reinterpret_cast<const char*>(&length), 4) + name + content;
}

QByteArray wave(int samples)
{
    QByteArray header("RIFF\0\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1f\0\0\x80\x3e\0\0\x02\0\x10\0data\0\0\0\0", 44);
    qToLittleEndian<quint32>(36 + samples * 2, header.data() + 4);
    qToLittleEndian<quint32>(samples * 2, header.data() + 40);
    return header + QByteArray(samples * 2, '\0');
}

}

TEST_F(MediaFileTest, aWholeFileOfItsKindIsOpened)
{
    for (const QString& path : { picture("a.png", "PNG"), picture("a.jpg", "JPG") }) {
        EXPECT_EQ(check(path, "image"), MediaProblem::None) << path.toStdString();
        EXPECT_EQ(check(path, "sticker"), MediaProblem::None);
    }
    QFile film(picture("moving.jpg", "JPG"));
    ASSERT_TRUE(film.open(QIODevice::Append));
    film.write(QByteArray(9000, 'x'));
    film.close();
    EXPECT_EQ(check(film.fileName(), "image"), MediaProblem::None) << "a film behind the picture";
    EXPECT_EQ(check(put("a.wav", wave(800)), "audio"), MediaProblem::None);
    EXPECT_EQ(check(put("a.pdf", "%PDF-1.4\n..."), "document"), MediaProblem::None);
    EXPECT_EQ(check(put("notes.txt", "anything"), "document"), MediaProblem::None);
    const QByteArray sound = box("ftyp", "M4A isom") + box("mdat", QByteArray(500, 'x')) + box("moov", "index");
    EXPECT_EQ(check(put("a.m4a", sound), "audio"), MediaProblem::None);
    EXPECT_EQ(check(put("stream.wav", wave(8).replace(4, 4, "\xff\xff\xff\xff")), "audio"), MediaProblem::None);
}

TEST_F(MediaFileTest, whatIsMissingOrNoFileSaysSo)
{
    EXPECT_EQ(text("", "audio"), "Audio file is missing from local media cache.");
    EXPECT_EQ(text(m_home.path("media/gone.png"), "image"), "Image file is missing from local media cache.");
    EXPECT_EQ(check(m_home.path("media/main"), "document"), MediaProblem::Elsewhere);
    ASSERT_EQ(mkfifo(m_home.path("media/pipe").toUtf8().constData(), 0600), 0);
    EXPECT_EQ(check(m_home.path("media/pipe"), "audio"), MediaProblem::Elsewhere) << "and nobody waits for a writer";
    EXPECT_EQ(text(put("empty.png", ""), "image"), "Image file is empty.");
}

TEST_F(MediaFileTest, whatIsLinkedOrOutsideTheAccountsFoldersIsNotOpened)
{
    m_home.write("secret/key.txt", "private");
    const auto link = [&](const QString& target, const QString& name) {
        EXPECT_TRUE(QFile::link(target, m_home.path(name)));
        return m_home.path(name);
    };
    EXPECT_EQ(check(link(m_home.path("secret/key.txt"), "media/main/a.txt"), "document"), MediaProblem::Elsewhere);
    link(m_home.path("secret"), "media/main/folder");
    EXPECT_EQ(check(m_home.path("media/main/folder/key.txt"), "document"), MediaProblem::Elsewhere);
    for (const QString& path : { "media/main/../../secret/key.txt", "secret/key.txt" })
        EXPECT_EQ(text(m_home.path(path), "document"),
            "Document file is not a regular file in its account's media folder, so it is not opened.");
    EXPECT_EQ(check(link("/dev/zero", "media/zero.png"), "image"), MediaProblem::Elsewhere);
    EXPECT_EQ(check(link(m_home.path("media/nowhere"), "media/main/dangling"), "image"), MediaProblem::Missing);
    EXPECT_EQ(check(link(put("real.txt", "x"), "media/inside.txt"), "document"), MediaProblem::Elsewhere);
}

TEST_F(MediaFileTest, aProgramIsNeverRun)
{
    EXPECT_EQ(check(put("a.pdf", "#!/bin/sh\n"), "document"), MediaProblem::Program);
    EXPECT_EQ(check(put("a.desktop", "x"), "document"), MediaProblem::Program);
    EXPECT_EQ(check(put("b.pdf", "[Desktop Entry]\nExec=x"), "document"), MediaProblem::Program);
    EXPECT_EQ(check(put("c.pdf",
                        "\x7f"
                        "ELF..."),
                  "document"),
        MediaProblem::Program);
    const QString marked = put("d.pdf", "%PDF-1.4");
    QFile::setPermissions(marked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_EQ(check(marked, "document"), MediaProblem::Program);
}

TEST_F(MediaFileTest, whatHoldsSomethingElseOrLostItsEndSaysSo)
{
    EXPECT_EQ(check(put("fake.png", "<html>not a picture</html>"), "image"), MediaProblem::WrongType);
    EXPECT_EQ(check(picture("b.png", "PNG"), "audio"), MediaProblem::WrongType);
    EXPECT_EQ(check(put("b.wav", wave(80)), "image"), MediaProblem::WrongType);
    for (const char* format : { "PNG", "JPG" }) {
        const QString path = picture(u"cut."_s + format, format);
        cut(path);
        EXPECT_EQ(text(path, "image"), "Image file is damaged: its end is missing.") << format;
    }
    const QString voice = put("cut.wav", wave(80));
    cut(voice);
    EXPECT_EQ(check(voice, "audio"), MediaProblem::CutShort);
    EXPECT_EQ(check(put("cut.m4a", box("ftyp", "M4A isom") + box("mdat", QByteArray(500, 'x'))), "audio"),
        MediaProblem::CutShort)
        << "recorded, and never finished";
    EXPECT_EQ(check(put("cut2.m4a", box("ftyp", "M4A isom") + box("moov", "index").chopped(2)), "audio"),
        MediaProblem::CutShort);
}
