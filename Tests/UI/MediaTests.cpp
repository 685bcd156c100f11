#include "Foundation/Literals.h"
#include "Inbox/OpenPerson.h"
#include "Support/Await.h"
#include "UI/WindowTest.h"

#include <QProcess>
#include <algorithm>
#include <sys/stat.h>

namespace corvane {

class MediaTest : public WindowTest { };

TEST_F(MediaTest, aPictureShowsInItsOwnRatioWhateverItsFileIsCalled)
{
    const QString path = home.path(u"share/Corvane/media/studio/label #1, 50% & ü?.png"_s);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QImage picture(800, 400, QImage::Format_RGB32);
    picture.fill(QColor(200, 30, 30));
    ASSERT_TRUE(picture.save(path));
    showInbox();
    receive(*launcher.children.first(), u"49172@s.whatsapp.net"_s, u"Ben"_s, u"the label"_s,
        { { "mediaType", "image" }, { "mediaPath", path } });
    person.select(u"ct:WHATSAPP:49172@s.whatsapp.net"_s);
    rest();
    QQuickItem* photo = item(u"media.photo"_s);
    ASSERT_NE(photo, nullptr);
    EXPECT_EQ(photo->size(), QSizeF(320, 240)); // placeholder, before the file is read
    ASSERT_TRUE(await([&] { return photo->property("ready").toBool(); }));
    rest();
    EXPECT_EQ(photo->size(), QSizeF(std::min(480.0, photo->parentItem()->property("maximumWidth").toDouble()), 240));
    const QPoint middle = photo->mapToScene(QPointF(photo->width() / 2, 120)).toPoint();
    EXPECT_EQ(this->picture().pixelColor(middle), QColor(200, 30, 30));
}

TEST_F(MediaTest, aPictureThatCannotBeShownSaysWhyInItsFrame)
{
    const auto path = [this](const QString& name) {
        return home.path(u"share/Corvane/media/studio/"_s + name);
    };
    home.write(u"share/Corvane/media/studio/fake.png"_s, "<svg><image href='file:///dev/zero'/></svg>");
    ASSERT_TRUE(QImage(400'000, 1, QImage::Format_Mono).save(path(u"thin.png"_s)));
    home.write(u"secret.png"_s, "private");
    QImage picture(800, 400, QImage::Format_RGB32);
    picture.fill(QColor(200, 30, 30));
    ASSERT_TRUE(picture.save(path(u"cut.png"_s)));
    QFile cut(path(u"cut.png"_s));
    ASSERT_TRUE(cut.resize(cut.size() / 3));
    showInbox();
    for (const QString& name : { u"fake.png"_s, u"thin.png"_s, u"link.png"_s, u"cut.png"_s, u"gone.png"_s })
        receive(*launcher.children.first(), u"49172@s.whatsapp.net"_s, u"Ben"_s, {},
            { { "mediaType", "image" }, { "mediaPath", path(name) } });
    ASSERT_TRUE(QFile::link(home.path(u"secret.png"_s), path(u"link.png"_s)));
    person.select(u"ct:WHATSAPP:49172@s.whatsapp.net"_s);
    const auto isShown = [this](const QString& text) {
        return std::ranges::any_of(
            visibleItems(), [&](QQuickItem* each) { return each->property("text").toString() == text; });
    };
    for (const QString& words :
        { u"This type of file can't be shown here."_s, u"The picture is too large to be shown here."_s,
            u"Image file is not a regular file in its account's media folder, so it is not opened."_s,
            u"The file is damaged."_s, u"Image file is missing from local media cache."_s }) {
        EXPECT_TRUE(await([&] {
            rest();
            return isShown(words);
        })) << qPrintable(words);
    }
}

TEST_F(MediaTest, aVoiceNoteShowsItsNameLengthAndShapeBeforeItIsPlayedAndAPipeAsPhotoHoldsNothing)
{
    const QString path = home.path(u"share/Corvane/media/studio/Directions.wav"_s);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    ASSERT_EQ(QProcess::execute(
                  u"ffmpeg"_s, { u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=duration=7"_s, path }),
        0);
    const QString pipe = home.path(u"share/Corvane/media/studio/face.png"_s);
    ASSERT_EQ(mkfifo(pipe.toUtf8().constData(), 0600), 0);
    showInbox();
    launcher.children.first()->printEvent(
        { { "type", "avatar" }, { "jid", "49172@s.whatsapp.net" }, { "path", pipe } });
    receive(*launcher.children.first(), u"49172@s.whatsapp.net"_s, u"Ben"_s, {},
        { { "mediaType", "audio" }, { "mediaPath", path } });
    person.select(u"ct:WHATSAPP:49172@s.whatsapp.net"_s);
    EXPECT_TRUE(await([&] {
        rest();
        const QQuickItem* length = findItem(u"thread.voiceLength"_s);
        return length && length->property("text").toString() == u"0:07";
    }));
}

}
