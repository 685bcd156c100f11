#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Store/Core/LocalDB.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>

namespace corvane {

namespace {

/// A fake web service at the same address in each run, since a sheet shows the address.
class Service {
public:
    explicit Service(Gallery& gallery)
        : m_gallery(gallery)
    {
        m_process.start(qEnvironmentVariable("CORVANE_NODE"),
            { u"--experimental-strip-types"_s, u"--no-warnings"_s, u"demo/web/src/main.ts"_s, u"--port"_s, u"8977"_s });
        while (!m_process.canReadLine() && m_process.waitForReadyRead()) { }
        m_base = QString::fromUtf8(m_process.readLine()).trimmed();
    }
    ~Service()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    const QString& base() const { return m_base; }
    void plan(const QByteArray& faults)
    {
        const std::unique_ptr<QNetworkReply> reply(
            m_network.put(QNetworkRequest(QUrl(m_base + u"/demo/faults"_s)), faults));
        while (!reply->isFinished())
            m_gallery.wait(Milliseconds(20));
    }

private:
    Gallery& m_gallery;
    QProcess m_process;
    QNetworkAccessManager m_network;
    QString m_base;
};

}

void drawWeb(Gallery& gallery)
{
    constexpr Milliseconds pause { 400 };
    WebServices& web = gallery.app().web();
    SessionStore& session = gallery.app().session();
    PushSettings& push = *gallery.screens().settings->push();
    PushSheet& sheet = *push.sheet();
    const auto rest = [&] {
        while (web.sync.syncing() || web.push.isLookingUp() || session.busy())
            gallery.wait(Milliseconds(50));
    };

    Service service(gallery);
    gallery.app().defaults().setText(u"nimb.apiBaseUrl"_s, service.base());
    gallery.screens().settings->setSection(u"sync"_s);
    gallery.screens().shell->openSettings();
    gallery.save(u"settings-sync-signed-out"_s, { Look::Light });
    web.push.attach();
    web.sync.takeUp();
    session.signIn(u"marta@tallervidal.example"_s, u"secret"_s);
    rest();
    push.refresh();
    rest();
    gallery.wait(pause);
    gallery.save(u"settings-sync"_s, { Look::Light, Look::Dark, Look::LightSmall });

    sheet.open();
    rest();
    gallery.save(u"push-review"_s, { Look::Light, Look::Dark, Look::LightSmall });
    sheet.keepChat(web.push.review()->threads.at(1).thread.conversationId, true);
    rest();
    gallery.save(u"push-review-kept"_s, { Look::Light });
    service.plan("messages=stall+9");
    sheet.push();
    gallery.wait(Milliseconds(1500));
    gallery.save(u"push-progress"_s, { Look::Light, Look::Dark });
    push.cancel();
    rest();
    gallery.save(u"push-cancelled"_s, { Look::Light });
    service.plan("chats=404");
    push.push();
    gallery.wait(pause);
    gallery.save(u"push-waiting"_s, { Look::Light });
    service.plan("");
    gallery.db().run(u"INSERT INTO cloud_left_out(conversation_id, from_ms, from_id, to_ms)"
                     " SELECT id, 0, '', last_ts-1 FROM unified_conversation WHERE channel='WHATSAPP' LIMIT 2;"_s);
    push.push();
    while (push.running())
        gallery.wait(Milliseconds(50));
    rest();
    gallery.save(u"push-result"_s, { Look::Light, Look::Dark });
    gallery.screens().settings->setSection(u"accounts"_s);
    gallery.screens().shell->closeSettings();

    gallery.press(Qt::Key_Escape);
    QMetaObject::invokeMethod(gallery.item(u"topnav.profile"_s), "clicked");
    gallery.wait(pause);
    for (const int key : { Qt::Key_Down, Qt::Key_Right })
        gallery.press(key);
    gallery.save(u"profile-workspaces"_s, { Look::Light, Look::Dark });
    gallery.press(Qt::Key_Escape);
    gallery.press(Qt::Key_Escape);
}

}
