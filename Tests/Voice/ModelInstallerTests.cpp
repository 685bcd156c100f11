#include "Voice/ModelInstaller.h"

#include "Foundation/UserDefaults.h"
#include "Support/Await.h"
#include "Support/SpeechModelFile.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"
#include "Voice/SpeechModelStore.h"

#include <QDir>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

namespace {

class Installer : public testing::Test {
protected:
    QStringList files() const { return QDir(store.modelsRoot()).entryList(QDir::Files); }
    QStringList names() const
    {
        QStringList names;
        for (const SpeechInstalledModel& model : store.installed())
            names.append(model.spec.displayName);
        return names;
    }
    void end()
    {
        EXPECT_TRUE(await([&] { return !installer.isBusy(); }));
    }

    TemporaryHome home;
    UserDefaults defaults { home.paths().defaultsFile };
    VirtualScheduler clock;
    SpeechModelStore store { home.paths().applicationSupport, defaults, clock };
    ModelInstaller installer { store, clock };
};

}

TEST_F(Installer, oneModelAtATimeIsCopiedCheckedAndPreferred)
{
    using Step = ModelInstaller::Step;
    home.write("ggml-tiny.bin", speechModelFile());
    home.write("notes.bin", "no model");
    const QSignalSpy installed(&installer, &ModelInstaller::installed);
    installer.add(home.path("ggml-tiny.bin"));
    EXPECT_EQ(installer.step(), Step::Copying);
    EXPECT_EQ(installer.name(), "Whisper Tiny");
    EXPECT_GT(installer.totalBytes(), 1'000'000);
    installer.cancel();
    EXPECT_EQ(installer.step(), Step::Idle);
    EXPECT_EQ(installer.name() + installer.errorText(), "");
    installer.add(home.path("ggml-tiny.bin"));
    installer.add(home.path("notes.bin"));
    EXPECT_EQ(installer.name(), "Whisper Tiny") << "the other one waits for nobody";
    end();
    EXPECT_EQ(names(), QStringList("Whisper Tiny"));
    EXPECT_EQ(installed.size(), 1);
    EXPECT_EQ(installed.value(0).value(0).toString(), store.preferredModel().id());
    EXPECT_EQ(files(), (QStringList { "ggml-tiny.bin", "models.json" }));
    EXPECT_EQ(store.installed().first().installedAt.toMSecsSinceEpoch(), clock.nowMs());

    installer.add(home.path("notes.bin"));
    end();
    EXPECT_EQ(installer.step(), Step::Failed);
    EXPECT_TRUE(installer.errorText().startsWith("This is not a speech model"));
    EXPECT_EQ(files().size(), 2) << "nothing of it is kept";
    installer.dismissError();
    EXPECT_EQ(installer.step(), Step::Idle);
    installer.download(QUrl("https://models.example/.bin"));
    EXPECT_TRUE(installer.errorText().startsWith("The address must name a model's file"));
    EXPECT_EQ(names(), QStringList("Whisper Tiny"));
}

TEST_F(Installer, theListHoldsOnlyWholeFilesAndTheChoiceSurvives)
{
    home.write("ggml-tiny.bin", speechModelFile());
    home.write("ggml-base.bin", speechModelFile());
    for (const char* file : { "ggml-tiny.bin", "ggml-base.bin", "ggml-tiny.bin" }) {
        installer.add(home.path(QString::fromLatin1(file)));
        end();
    }
    EXPECT_EQ(names(), (QStringList { "Whisper Base", "Whisper Tiny" })) << "the same one is replaced";
    const SpeechModelSpec base = store.installed().first().spec;
    store.prefer(base);
    clock.advance(Milliseconds(5000));
    store.markUsed(base);
    SpeechModelStore next(home.paths().applicationSupport, defaults, clock);
    EXPECT_EQ(next.preferredModel(), base);
    EXPECT_EQ(next.installedModel(base)->lastUsedAt.value().toMSecsSinceEpoch(), clock.nowMs());
    QFile(store.modelsRoot() + "/ggml-base.bin").resize(10);
    next.refresh();
    ASSERT_EQ(next.installed().size(), 1);
    EXPECT_EQ(next.preferredModel().displayName, "Whisper Tiny") << "the chosen one is broken";
    next.remove(next.installed().first().spec);
    EXPECT_FALSE(QFile::exists(store.modelsRoot() + "/ggml-tiny.bin"));
    EXPECT_EQ(next.preferredModel(), basicRecogniserSpec());
}

}
