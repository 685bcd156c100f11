#pragma once

// A mail that is written with a subject and files, and one of an agent's that waits.

#include "gallery-look.h"

#include "Engines/AccountStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Engines/EngineProcesses.h"
#include "Foundation/Ids.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "Store/Messages/InboxQueries.h"

#include <QFile>

namespace corvane {

/// In the thread that is open, which is one of mails.
inline void drawFiles(CorvaneApp& app, Screens& screens, const std::function<void(Milliseconds)>& wait,
    const std::function<void(const QString& name, Look look)>& save)
{
    using namespace Qt::StringLiterals;
    Composer& composer = *screens.inbox.composer();
    const auto target = replyTarget(app.engine().db(), composer.contactId(), composer.replyPlatform());
    const auto account = target ? app.store().findBySlug(target->account) : std::nullopt;
    if (!account)
        return;
    app.engine().handleEvent(
        account->id, uR"({"type":"features","files":true,"maxBytes":18874368,"subject":true})"_s, Speaker::Current);
    const auto attach = [&](const QString& name, qsizetype bytes) {
        QFile file(app.paths().applicationSupport + u'/' + name);
        (void)file.open(QIODevice::WriteOnly);
        file.write(QByteArray(bytes, 'x'));
        file.close();
        composer.dropFiles({ QUrl::fromLocalFile(file.fileName()) });
        while (!composer.attachments()->isReady())
            wait(Milliseconds(20));
    };
    attach(u"Quote for twelve bowls.pdf"_s, 318'000);
    attach(u"Glaze samples.jpg"_s, 3'100'000);
    composer.setSubject(u"The quote that you asked for"_s);
    composer.setText(u"Here is the quote, and a picture of the two glazes."_s);
    save(u"inbox-mail-files"_s, Look::Light);
    save(u"inbox-mail-files"_s, Look::DarkSmall);
    composer.dropFiles({ QUrl::fromLocalFile(u"/usr/bin/node-that-is-not-there"_s) });
    save(u"inbox-mail-refused"_s, Look::Light);
    composer.dismissError();

    const OutgoingMessage message { composer.text(), composer.subject(), composer.attachments()->files() };
    app.engine().queueDraft(conversationId(target->account, target->chatId), message, u"mcp"_s);
    for (const OutgoingFile& file : message.files)
        composer.attachments()->remove(file.path);
    composer.setSubject({});
    composer.setText({});
    app.delivery().refresh();
    for (const PendingDraft& draft : app.delivery().pending())
        screens.drafts.askToConfirm(draft.id);
    wait(Milliseconds(200));
    save(u"inbox-draft-files"_s, Look::Light);
    screens.shell.openApprovals();
    wait(Milliseconds(200));
    save(u"approvals-files"_s, Look::Light);
    screens.shell.closeApprovals();
    app.engine().db().run(u"DELETE FROM outbound_draft;"_s);
    app.delivery().refresh();
}

}
