#include "AI/TranslationService.h"
#include "Foundation/Literals.h"

#include "Support/FakeLanguageModel.h"

namespace corvane {

class TranslationServiceTest : public testing::Test {
protected:
    /// Records what the caller receives, in order.
    void translate(const QString& text, const QString& language, CancelHandle cancel = {})
    {
        [](TranslationServiceTest* self, QString text, QString language, CancelHandle cancel) -> QCoro::Task<> {
            const auto outcome = co_await self->service->translate(
                text, language, [self](const QString& words) { self->heard.append(words); }, cancel);
            self->heard.append(outcome ? outcome->text : "! " + outcome.error().message);
        }(this, text, language, cancel);
    }

    FakeMachineFacts machine;
    std::unique_ptr<TranslationService> service = std::make_unique<TranslationService>(machine);
    QStringList heard;
};

TEST_F(TranslationServiceTest, whatCannotBeTranslatedFailsAtOnceInWords)
{
    translate("hello", "German");
    service->setHost(true);
    translate("hello", "Klingonese");
    machine.running = { 4, 19, 0 };
    translate("hello", "German");
    EXPECT_EQ(heard,
        (QStringList { "! Translation on this computer is not set up.",
            "! Translation on this computer does not support Klingonese.",
            "! Translation on this computer needs a newer system." }));
}

TEST_F(TranslationServiceTest, everyoneWhoWaitsHearsExactlyOneEnd)
{
    service->setHost(true);
    translate("hello", " Deutsch");
    const TranslationRequest first = *service->activeRequest();
    EXPECT_EQ(first.target, "de");
    service->updateStatus(first, "Loading the language...");
    service->finish(first, { "hallo", "Deutsch", "Apple Translation", {} });
    EXPECT_FALSE(service->activeRequest());
    service->fail(first, { "too late" });
    EXPECT_EQ(heard, (QStringList { "Preparing translation for  Deutsch...", "Loading the language...", "hallo" }));

    heard.clear();
    const CancelHandle cancel;
    translate("one", "bangla", cancel);
    translate("two", "fr");
    cancel.cancel();
    EXPECT_EQ(service->activeRequest()->text, "two");
    service.reset();
    EXPECT_EQ(heard.filter("!"), (QStringList { "! Cancelled.", "! Translation on this computer is not set up." }));
}

TEST_F(TranslationServiceTest, languagesAreKnownByNameOrCode)
{
    for (const QString& name : TranslationService::languages())
        EXPECT_TRUE(TranslationService::language(name)) << qPrintable(name);
    EXPECT_EQ(TranslationService::language(" Bengali "), u"bn"_s);
    EXPECT_EQ(TranslationService::language("bahasa indonesia"), u"id"_s);
    EXPECT_EQ(TranslationService::language("pt-BR"), u"pt-br"_s);
    EXPECT_FALSE(TranslationService::language(""));
    EXPECT_FALSE(TranslationService::language("xx-yy"));
}

}
