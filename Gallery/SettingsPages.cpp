#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Engines/EngineProcesses.h"
#include "Foundation/Ids.h"
#include "Settings/IntegrationsView.h"
#include "Settings/VoiceSettings.h"
#include "Shell/AppShell.h"
#include "Store/Core/LocalDB.h"
#include "Voice/KnownModels.h"
#include "Voice/VoiceServices.h"

namespace corvane {

namespace {

/// The sheets that connect channels. The demo's engine finds mail servers by the domain, and rejects the password
/// "wrong".
void drawConnectSheets(Gallery& gallery)
{
    AccountsView& accounts = *gallery.screens().settings->accounts();
    for (const QString& channel : { u"SLACK"_s, u"SMS"_s }) {
        accounts.connectChannel(channel);
        gallery.save(
            u"settings-connect-"_s + channel.toLower(), { channel == u"SMS" ? Look::LightSmall : Look::Light });
        accounts.connectForm()->close();
    }
    accounts.connectChannel(u"EMAIL"_s);
    gallery.save(u"settings-connect-email"_s, { Look::Dark });
    MailForm& form = *accounts.mailForm();
    const auto submit = [&](const QString& address, const QString& password) {
        form.close();
        form.open();
        form.field(u"email"_s).type(address);
        form.field(u"password"_s).type(password);
        form.submit();
    };
    const auto rest = [&] {
        while (form.busy())
            gallery.wait(Milliseconds(50));
    };
    submit(u"marta@patience.example"_s, u"twelve letters"_s);
    gallery.save(u"settings-mail-finding"_s, { Look::Light });
    submit(u"marta@studio.example"_s, u"twelve letters"_s);
    rest();
    gallery.save(u"settings-mail-confirm"_s, { Look::Light });
    gallery.save(u"settings-mail-confirm"_s, { Look::DarkSmall });
    submit(u"marta@vidal.example"_s, u"wrong"_s);
    rest();
    gallery.save(u"settings-mail-failed"_s, { Look::Light });
    form.setServersShown(true);
    gallery.save(u"settings-mail-found"_s, { Look::Dark });
    gallery.save(u"settings-mail-found"_s, { Look::LightSmall });
    form.close();
}

/// Two speech models in the settings, and a third whose URL is rejected.
void addSpeechModels(SpeechModelStore& store, VoiceSettings& settings)
{
    for (const char* const file : { "ggml-base.bin", "ggml-small.en.bin" }) {
        const QString name = QString::fromLatin1(file);
        SpeechInstalledModel model;
        model.spec.repository = u"whisper.cpp"_s;
        model.spec.variant = name;
        model.spec.displayName = modelName(name);
        model.spec.revision = u"60ed5bc3dd14eea856493d334349b405782ddcaf0028d4b5df4088345fba2efe"_s;
        model.localPath = store.modelsRoot() + QLatin1Char('/') + name;
        model.sizeBytes = 147'951'465;
        store.add(model);
    }
    settings.setAddress(u"http://models.example/ggml-base.bin"_s);
    settings.download();
}

}

void drawSettings(Gallery& gallery)
{
    // A second phone that waits for pairing, a paused account, one whose token is rejected, one that is starting, and
    // one whose engine does not exist, so that it gave up.
    qputenv("CORVANE_DEMO_PAIRING_SECONDS", "3600");
    AccountStore& accounts = gallery.app().store();
    const Account phone = accounts.add(u"Workshop phone"_s, Channel::WhatsApp);
    gallery.app().engine().start(phone);
    Account paused = accounts.add(u"Marta Vidal"_s, Channel::LinkedIn);
    paused.paused = true;
    accounts.update(paused);
    gallery.wait(Milliseconds(2500));
    gallery.clock().waitAtMost(Milliseconds(50));
    const Account gaveUp = accounts.add(u"Old phone"_s, Channel::IMessage);
    gallery.app().engine().start(gaveUp);
    const Account refused = accounts.add(u"Discord"_s, Channel::Discord);
    gallery.app().engine().handleEvent(refused.id, uR"({"type":"status","state":"logged_out"})"_s, Speaker::Current);
    while (gallery.app().engine().runtime(gaveUp.id).status != WAStatus::Error)
        gallery.wait(Milliseconds(50));
    gallery.clock().waitAtMost(Milliseconds::max());
    const Account connecting = accounts.add(u"Slack"_s, Channel::Slack);
    gallery.app().engine().handleEvent(connecting.id, uR"({"type":"status","state":"connecting"})"_s, Speaker::Current);

    gallery.screens().shell->openSettings();
    gallery.save(u"settings-accounts"_s, { Look::Light, Look::Dark, Look::LightSmall });
    gallery.screens().settings->accounts()->pairing()->open(phone.id);
    gallery.save(u"settings-pairing"_s, { Look::Light, Look::Dark });
    gallery.screens().settings->accounts()->pairing()->close();
    gallery.wait(Milliseconds(200));
    drawConnectSheets(gallery);
    gallery.screens().settings->setSection(u"approvals"_s);
    gallery.screens().settings->controlChat()->choose(
        conversationId(u"taller-vidal"_s, u"34600000109@s.whatsapp.net"_s));
    gallery.save(u"settings-approvals"_s, { Look::Light, Look::Dark });
    gallery.db().run(u"INSERT INTO work_memory_entries(id, scope, body, created_at) VALUES"
                     u"('g1','business','The studio closes for two weeks in August.','1'),"
                     u"('g2','owner','Signs with Marta, never with the surname.','2');"_s);
    gallery.screens().settings->setSection(u"assistant"_s);
    gallery.save(u"settings-assistant"_s, { Look::Light, Look::Dark, Look::LightSmall });
    gallery.screens().settings->setSection(u"voice"_s);
    gallery.save(u"settings-voice"_s, { Look::Light, Look::Dark });
    addSpeechModels(gallery.app().voice().store, *gallery.screens().settings->voice());
    gallery.save(u"settings-voice-models"_s, { Look::Light, Look::LightSmall });
    gallery.screens().settings->setSection(u"system"_s);
    gallery.save(u"settings-system"_s, { Look::Light, Look::Dark });
    gallery.screens().shell->closeSettings();
}

}
