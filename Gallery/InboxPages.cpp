#include "Approvals/PendingDraftsView.h"
#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Inbox/InboxView.h"
#include "Pages.h"

#include "Engines/AccountStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Engines/EngineProcesses.h"
#include "Foundation/Ids.h"
#include "Shell/AppShell.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Core/LocalDB.h"
#include "Store/Messages/InboxQueries.h"

#include <QFile>

namespace corvane {

namespace {

/// Queues a draft by the assistant to the open contact, which waits for approval.
void queueReply(Gallery& gallery, const QString& text)
{
    LocalDB& db = gallery.db();
    Composer& composer = *gallery.screens().inbox->reply()->composer();
    if (const auto target = replyTarget(db, composer.contactId(), composer.routing()->replyPlatform()))
        queueDraft(db, conversationId(target->account, target->chatId), text, u"mcp"_s);
    gallery.app().delivery().refresh();
    for (const PendingDraft& draft : gallery.app().delivery().pending())
        gallery.screens().drafts->askToConfirm(draft.id);
    gallery.wait(Milliseconds(200));
}

void searchFor(Gallery& gallery, const QString& words)
{
    gallery.screens().inbox->filters()->setSearch(words);
    gallery.wait(Milliseconds(500));
}

/// A mail with a subject and attachments that is being written, and an agent's draft that waits. Expects an open mail
/// thread.
void drawFiles(Gallery& gallery)
{
    Composer& composer = *gallery.screens().inbox->reply()->composer();
    const auto target = replyTarget(gallery.db(), composer.contactId(), composer.routing()->replyPlatform());
    const auto account = target ? gallery.app().store().findBySlug(target->account) : std::nullopt;
    if (!account)
        return;
    gallery.app().engine().handleEvent(
        account->id, uR"({"type":"features","files":true,"maxBytes":18874368,"subject":true})"_s, Speaker::Current);
    const auto attach = [&](const QString& name, qsizetype bytes) {
        QFile file(gallery.app().paths().applicationSupport + u'/' + name);
        (void)file.open(QIODevice::WriteOnly);
        file.write(QByteArray(bytes, 'x'));
        file.close();
        composer.dropFiles({ QUrl::fromLocalFile(file.fileName()) });
        while (!composer.attachments()->isReady())
            gallery.wait(Milliseconds(20));
    };
    attach(u"Quote for twelve bowls.pdf"_s, 318'000);
    attach(u"Glaze samples.jpg"_s, 3'100'000);
    composer.setSubject(u"The quote that you asked for"_s);
    composer.setText(u"Here is the quote, and a picture of the two glazes."_s);
    gallery.save(u"inbox-mail-files"_s, { Look::Light });
    gallery.save(u"inbox-mail-files"_s, { Look::DarkSmall });
    composer.dropFiles({ QUrl::fromLocalFile(u"/usr/bin/node-that-is-not-there"_s) });
    gallery.save(u"inbox-mail-refused"_s, { Look::Light });
    composer.dismissError();

    const OutgoingMessage message { composer.text(), composer.subject(), composer.attachments()->files() };
    gallery.app().engine().queueDraft(conversationId(target->account, target->chatId), message, u"mcp"_s);
    for (const OutgoingFile& file : message.files)
        composer.attachments()->remove(file.path);
    composer.setSubject({});
    composer.setText({});
    gallery.app().delivery().refresh();
    for (const PendingDraft& draft : gallery.app().delivery().pending())
        gallery.screens().drafts->askToConfirm(draft.id);
    gallery.wait(Milliseconds(200));
    gallery.save(u"inbox-draft-files"_s, { Look::Light });
    gallery.screens().shell->openApprovals();
    gallery.wait(Milliseconds(200));
    gallery.save(u"approvals-files"_s, { Look::Light });
    gallery.screens().shell->closeApprovals();
    gallery.db().run(u"DELETE FROM outbound_draft;"_s);
    gallery.app().delivery().refresh();
}

}

void drawInbox(Gallery& gallery)
{
    InboxView& inbox = *gallery.screens().inbox;
    gallery.save(u"inbox-list"_s, { Look::Light, Look::Dark, Look::LightSmall });

    gallery.openThread(u"Megan Price"_s);
    gallery.save(u"inbox-thread"_s, { Look::Light, Look::Dark, Look::LightSmall, Look::DarkSmall });
    gallery.openThread(u"Taller · Team"_s);
    gallery.save(u"inbox-group"_s, { Look::Light, Look::Dark });
    gallery.openThread(u"Hannah Fischer"_s);
    gallery.save(u"inbox-mail"_s, { Look::Light });
    drawFiles(gallery);
    gallery.openThread(u"Megan Price"_s);
    queueReply(gallery, u"Hi Megan, the second firing is done. Shall I bring the bowls on Thursday?"_s);
    inbox.reply()->composer()->setText(u"Good morning! I have just unpacked the kiln."_s);
    gallery.save(u"inbox-draft"_s, { Look::Light, Look::Dark });
    (void)rejectDraft(gallery.db(), gallery.screens().drafts->confirmDraft());
    gallery.app().delivery().refresh();
    inbox.reply()->composer()->setText({});
    inbox.composeSheet()->open();
    gallery.save(u"inbox-new-message"_s, { Look::Light, Look::Dark });
    inbox.composeSheet()->close();
    gallery.press(Qt::Key_K, Qt::ControlModifier);
    gallery.save(u"palette-open"_s, { Look::Light, Look::Dark });
    inbox.palette()->setQuery(u"kiln be"_s);
    gallery.save(u"palette-narrowing"_s, { Look::Light });
    gallery.press(Qt::Key_Escape);
    gallery.press(Qt::Key_F1);
    gallery.save(u"shortcuts-open"_s, { Look::Light, Look::DarkSmall });
    QMetaObject::invokeMethod(gallery.item(u"help.3"_s), "clicked");
    gallery.save(u"help-open"_s, { Look::Light, Look::DarkSmall });
    gallery.press(Qt::Key_Escape);

    searchFor(gallery, u"glaze"_s);
    gallery.save(u"inbox-search"_s, { Look::Light, Look::Dark });
    if (QQuickItem* list = gallery.item(u"inbox.list"_s))
        list->setProperty("contentY", 560);
    gallery.save(u"inbox-search-groups"_s, { Look::Light, Look::DarkSmall });
    searchFor(gallery, u"glaze in:work"_s);
    gallery.save(u"inbox-search-group"_s, { Look::Light });
    searchFor(gallery, u"glaze before:tuesday"_s);
    gallery.save(u"inbox-search-hint"_s, { Look::Light });
    searchFor(gallery, u"nothing like this"_s);
    gallery.save(u"inbox-nothing-found"_s, { Look::Dark });
    searchFor(gallery, {});

    inbox.filters()->setViewModeWord(u"messages"_s);
    gallery.save(u"inbox-by-day"_s, { Look::Light });
    inbox.filters()->setViewModeWord(u"contacts"_s);

    inbox.filters()->setChannelFilter(u"EMAIL"_s);
    gallery.save(u"inbox-filtered"_s, { Look::Light });
    inbox.filters()->setChannelFilter(u"DISCORD"_s);
    gallery.save(u"inbox-nothing-filtered"_s, { Look::Light });
    inbox.filters()->setChannelFilter({});

    gallery.db().run(u"INSERT INTO sync_health (source, status, updated_at) VALUES ('inbox','error',0);"_s);
    gallery.clock().move(std::chrono::hours(3));
    inbox.list()->reload();
    gallery.save(u"inbox-stale"_s, { Look::Light, Look::Dark });
    gallery.clock().move(-std::chrono::hours(3));
    gallery.db().run(u"DELETE FROM sync_health;"_s);
    inbox.list()->reload();

    for (int row : { 1, 3, 4 }) {
        const QAbstractItemModel* contacts = inbox.list()->contacts();
        inbox.actions()->bulk()->toggle(contacts->index(row, 0).data(contacts->roleNames().key("id")).toString());
    }
    gallery.save(u"inbox-picked"_s, { Look::Light });
    inbox.actions()->archiveChecked();
    gallery.save(u"inbox-undo"_s, { Look::Dark });
    inbox.filters()->setFilterWord(u"archived"_s);
    inbox.actions()->bulk()->all();
    gallery.save(u"inbox-archived"_s, { Look::Light });
    inbox.filters()->setFilterWord(u"all"_s);
    inbox.actions()->undo();
    if (QQuickItem* list = gallery.item(u"inbox.list"_s)) {
        list->forceActiveFocus();
        gallery.press(Qt::Key_Menu);
        gallery.save(u"inbox-row-menu"_s, { Look::Light, Look::Dark });
        gallery.press(Qt::Key_Escape);
    }
    gallery.window().close();
    gallery.save(u"closing-notice"_s, { Look::Light });
    gallery.press(Qt::Key_Escape);
}

}
