#include "Foundation/UserDefaults.h"
#include "Settings/VoiceSettings.h"
#include "Support/Await.h"
#include "Support/FakeLanguageModel.h"
#include "Support/LoopbackWeb.h"
#include "Support/RealVoice.h"
#include "Support/SpeechModelFile.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <algorithm>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

class VoiceSettingsTest : public testing::Test {
protected:
    void install()
    {
        EXPECT_TRUE(await([&] { return !view.busy(); }));
    }

    TemporaryHome home;
    SystemScheduler clock;
    UserDefaults defaults { home.paths().defaultsFile };
    FakeMachineFacts machine;
    RealVoice voice { machine, defaults, clock, home.paths().applicationSupport };
    VoiceSettings view { voice.services, defaults };
    LoopbackWeb web;
    const QByteArray model = speechModelFile();
};

}

TEST_F(VoiceSettingsTest, aDownloadThatBrokeOffGoesOnAndItsModelIsUsed)
{
    EXPECT_EQ(view.models().size(), 1);
    view.setLocale("en");
    EXPECT_TRUE(view.stateText().startsWith("English is understood roughly.")) << qPrintable(view.stateText());
    EXPECT_EQ(view.localeHint(), "");
    view.setLocale("system");
    EXPECT_EQ(view.locale(), "system");
    EXPECT_EQ(view.installText(), "");
    const QList<PublishedModelLine> published = view.published();
    ASSERT_EQ(published.size(), 10);
    EXPECT_EQ(published[0].label, "Tiny · 79 MB · 99 languages · Fastest");
    EXPECT_EQ(published[1].label, "Tiny, English · 79 MB · English · Fastest");
    EXPECT_EQ(view.address(), published[2].address);
    EXPECT_TRUE(view.address().startsWith("https://") && view.address().endsWith("/ggml-base.bin"));
    EXPECT_EQ(view.locales().size(), 100);
    EXPECT_EQ(view.locales().first().id, "system");
    const auto german = [&] {
        const QList<Choice> all = view.locales();
        return std::ranges::find(all, QString("de"), &Choice::id)->label;
    };
    EXPECT_EQ(german(), "German (needs a speech model)");
    EXPECT_EQ(view.progress(), -1);
    const qsizetype part = 1'000'000;
    web.answer("/ggml-tiny.bin",
        { "HTTP/1.1 200 OK\r\nETag: \"one\"\r\nContent-Length: " + QByteArray::number(model.size()) + "\r\n\r\n"
            + model.left(part) });
    QSignalSpy addresses(&view, &VoiceSettings::addressChanged);
    view.setAddress(web.base() + "/ggml-tiny.bin");
    view.setAddress(web.base() + "/ggml-tiny.bin");
    EXPECT_EQ(addresses.size(), 1);
    view.download();
    EXPECT_TRUE(view.busy());
    EXPECT_EQ(view.installText(), "Downloading Whisper Tiny: 0 bytes");
    EXPECT_EQ(voice.services.speech.loadState().kind, SpeechModelLoadState::Kind::Downloading);
    install();
    EXPECT_TRUE(view.installText().startsWith("Preparing Whisper Tiny failed: ")) << qPrintable(view.installText());
    EXPECT_TRUE(view.installText().endsWith(". Check the network and try again."));
    EXPECT_TRUE(view.installFailed());
    view.dismissError();
    EXPECT_FALSE(view.installFailed());
    EXPECT_EQ(view.installText(), "");

    const QByteArray range = "bytes " + QByteArray::number(part) + '-' + QByteArray::number(model.size() - 1) + '/'
        + QByteArray::number(model.size());
    web.answer("/ggml-tiny.bin", LoopbackWeb::status(206, model.mid(part), { "Content-Range: " + range }));
    view.download();
    install();
    EXPECT_EQ(web.requests().last().headers["range"], "bytes=1000000-");
    EXPECT_EQ(web.requests().last().headers["if-range"], "\"one\"");
    ASSERT_FALSE(view.installFailed()) << qPrintable(view.installText());
    EXPECT_EQ(german(), "German");
    ASSERT_EQ(view.models().size(), 2);
    EXPECT_FALSE(view.models().last().preferred || view.models().last().removable);
    EXPECT_EQ(view.models().last().checksum, "");
    EXPECT_EQ(view.models().last().detail, "Always there, for short and clear sentences. Without punctuation.");
    const SpeechModelLine line = view.models().first();
    EXPECT_EQ(line.name, "Whisper Tiny");
    EXPECT_EQ(line.checksum.size(), 8 + 16 + 1);
    EXPECT_TRUE(line.preferred && line.removable);
    EXPECT_EQ(line.detail, "8 MB · 99 languages · ggml-tiny.bin");
    EXPECT_EQ(view.stateText(), "Speech becomes text on this computer. No sound leaves it.");

    QSignalSpy locales(&view, &VoiceSettings::localeChanged);
    QSignalSpy models(&view, &VoiceSettings::modelsChanged);
    view.setLocale("de");
    view.setLocale("de");
    EXPECT_EQ(locales.size(), 1);
    EXPECT_EQ(models.size(), 1);
    EXPECT_EQ(view.localeText(), "German");
    EXPECT_TRUE(view.ready());
    EXPECT_EQ(view.localeHint(), "");
    view.prefer("no such model");
    EXPECT_TRUE(view.models().first().preferred);
    view.prefer(view.models().last().id);
    EXPECT_TRUE(view.models().last().preferred);
    EXPECT_EQ(view.localeHint(), "The chosen recogniser does not understand German.");
    EXPECT_EQ(locales.size(), 2);
    EXPECT_EQ(models.size(), 2);
    view.prefer(line.id);
    EXPECT_TRUE(view.models().first().preferred);
    view.remove("no such model");
    EXPECT_EQ(view.models().size(), 2);
    view.remove(line.id);
    EXPECT_EQ(view.models().size(), 1);
    EXPECT_EQ(view.stateText(), "A speech model is needed before voice notes and dictation become text.");
    EXPECT_FALSE(view.ready());
    EXPECT_FALSE(QFile::exists(voice.services.store.modelsRoot() + "/ggml-tiny.bin"));
}

TEST_F(VoiceSettingsTest, whatIsNoModelIsRefusedAndAnotherMachineWithoutHttpsToo)
{
    struct Case {
        QString address;
        QString words;
    };
    web.answer("/page.bin", LoopbackWeb::status(200, "<html>sign in</html>"));
    web.answer("/gone.bin", LoopbackWeb::status(404, "gone"));
    const QList<Case> cases {
        { web.base() + "/page.bin", "This is not a speech model: a ggml file for whisper.cpp is needed." },
        { web.base() + "/gone.bin",
            "Preparing gone.bin failed: the server answered 404. Check the network and try again." },
        { "http://models.example/a.bin",
            "Preparing a.bin failed: the address must begin with https://. Check the network and try again." },
        { "https://models.example/", "The address must name a model's file, such as .../ggml-base.bin." },
    };
    for (const Case& each : cases) {
        view.setAddress(each.address);
        view.download();
        install();
        EXPECT_EQ(view.installText(), each.words);
    }
    EXPECT_EQ(view.models().size(), 1);
}

TEST_F(VoiceSettingsTest, aFileOfThisMachineIsCopiedAndACancelledCopyLeavesNothing)
{
    home.write("ggml-base.bin", model);
    const QUrl file = QUrl::fromLocalFile(home.path("ggml-base.bin"));
    view.addFiles({});
    EXPECT_FALSE(view.busy());
    view.addFiles({ file });
    EXPECT_EQ(view.installText(), "Copying Whisper Base: 0 bytes of 8 MB");
    EXPECT_EQ(view.progress(), 0);
    view.cancel();
    EXPECT_FALSE(view.busy());
    view.addFiles({ file });
    install();
    ASSERT_EQ(view.models().size(), 2);
    EXPECT_EQ(view.models().first().name, "Whisper Base");
    EXPECT_TRUE(view.models().first().checksum.startsWith("SHA-256 "));
    EXPECT_EQ(QDir(voice.services.store.modelsRoot()).entryList(QDir::Files).size(), 2) << "the model and the list";
    EXPECT_TRUE(QFile::exists(file.toLocalFile()));

    // As if the program was killed before the model was added to the list.
    const QString root = voice.services.store.modelsRoot();
    EXPECT_TRUE(QFile::remove(root + "/models.json"));
    RealVoice next(machine, defaults, clock, home.paths().applicationSupport);
    EXPECT_TRUE(VoiceSettings(next.services, defaults).installText().startsWith("Checking Whisper Base: "));
    EXPECT_TRUE(await([&] { return !next.services.installer.isBusy(); }));
    ASSERT_EQ(next.services.store.installed().size(), 1);
    EXPECT_EQ(next.services.store.installed().first().spec.displayName, "Whisper Base");
}
