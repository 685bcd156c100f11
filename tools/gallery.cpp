// Renders every screen and state of the window into a folder of pictures: the real window over the real view models and
// a database that the demonstration engines filled. The clock stands still, so that each run draws the same.

#include "gallery-approvals.h"
#include "gallery-calendar.h"
#include "gallery-calls.h"
#include "gallery-connect.h"
#include "gallery-files.h"
#include "gallery-machine.h"
#include "gallery-terminal.h"
#include "gallery-voice.h"
#include "gallery-window.h"

#include "Approvals/ApprovalsStore.h"
#include "Engines/AccountStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Engines/EngineProcesses.h"
#include "Foundation/Ids.h"
#include "Platform/Linux/Decode/DecodeChild.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Core/LocalDB.h"
#include "Store/Messages/InboxQueries.h"
#include "UI/MainWindow.h"
#include "UI/PanelWindow.h"
#include "Web/SessionStore.h"

#include <QDir>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImageWriter>
#include <QKeyEvent>
#include <QQuickItem>
#include <QStyleHints>
#include <cstdio>
#include <cstring>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

class Gallery {
public:
    Gallery(const QString& folder, qint64 nowMs)
        : m_folder(folder)
        , m_clock(nowMs)
        , m_app(AppPaths::fromEnvironment(), m_clock, pictureMachine(m_desktop, m_model))
        , m_screens(m_app)
        , m_window(m_screens, m_app.defaults(), m_app.decoder())
        , m_panel(m_window.engine(), m_screens.panel, m_screens.notices, m_clock)
    {
        QObject::connect(&m_app.engine(), &EngineManager::eventHandled, &m_app, [this] { ++m_events; });
    }

    /// The start sequence stays out: it would take the tool server's port from a program that runs beside.
    void draw()
    {
        m_window.show();
        save(u"inbox-empty"_s, { Look::Light, Look::Dark });
        m_app.startAllEngines();
        waitForEngines();
        m_app.approvals().attach(m_app.delivery(), m_app.recordedCalls());
        inboxScreens();
        assistantScreens();
        contactScreens();
        drawCalendar(m_screens, *m_model,
            [this](const QString& name) { name.startsWith(u"panel"_s) ? savePanel(name) : save(name); });
        approvalScreens();
        settingsScreens();
        hubScreens();
        drawTerminals(
            m_screens, [this](Milliseconds pause) { wait(pause); }, [this](const QString& name) { save(name); });
        drawCalls(
            m_screens, m_app.engine().db(), [this](Milliseconds pause) { wait(pause); },
            [this](const QString& name) { save(name, { Look::Light, Look::Dark, Look::LightSmall }); },
            [this](const QString& name) { savePanel(name, { Look::Light, Look::Dark }); });
        wallScreens();
        m_app.willTerminate();
    }

private:
    void wait(Milliseconds duration)
    {
        QEventLoop loop;
        const auto timer = m_clock.after(duration, [&loop] { loop.quit(); });
        loop.exec();
    }

    /// Until no engine has spoken for a second.
    void waitForEngines()
    {
        for (int before = -1; before != m_events || m_events == 0;) {
            before = m_events;
            wait(Milliseconds(1000));
        }
    }

    void save(const QString& name, std::initializer_list<Look> looks = { Look::Light, Look::Dark })
    {
        for (const Look look : looks) {
            const bool small = look == Look::LightSmall || look == Look::DarkSmall;
            m_window.window()->resize(small ? QSize(1040, 660) : QSize(1320, 820));
            saveWindow(*m_window.window(), name, look, small ? u"1040x660"_s : u"1320x820"_s);
        }
    }

    void savePanel(const QString& name, std::initializer_list<Look> looks = { Look::Light, Look::Dark })
    {
        m_panel.show({});
        for (const Look look : looks)
            saveWindow(*m_panel.window(), name, look, u"380x560"_s);
        m_panel.hide();
    }

    void saveWindow(QQuickWindow& window, const QString& name, Look look, const QString& size)
    {
        const bool dark = look == Look::Dark || look == Look::DarkSmall;
        m_desktop->scheme = dark ? ColourScheme::Dark : ColourScheme::Light;
        Q_EMIT m_desktop->appearanceChanged();
        wait(Milliseconds(250));
        const QString file = u"%1/%2-%3-%4.png"_s.arg(m_folder, name, dark ? u"dark"_s : u"light"_s, size);
        QImageWriter writer(file);
        writer.setCompression(100);
        writer.write(window.grabWindow().convertToFormat(QImage::Format_RGB888));
        std::printf("%s\n", qPrintable(file));
    }

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {})
    {
        for (const QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease }) {
            QKeyEvent event(type, key, modifiers, text);
            QGuiApplication::sendEvent(m_window.window(), &event);
        }
        wait(Milliseconds(100));
    }

    QQuickItem* item(const QString& name) const { return itemUnder(m_window.window()->contentItem(), name); }

    QString contactNamed(const QString& name)
    {
        return m_app.engine()
            .db()
            .scalar(u"SELECT id FROM contact WHERE display_name=? AND deleted_at IS NULL;"_s, { name })
            .value_or(QString());
    }

    void openThread(const QString& name)
    {
        m_screens.inbox.select(contactNamed(name));
        wait(Milliseconds(400));
    }

    /// A draft of the assistant to whoever is open, with the question whether it goes out.
    void queueReply(const QString& text)
    {
        LocalDB& db = m_app.engine().db();
        const Composer& composer = *m_screens.inbox.composer();
        if (const auto target = replyTarget(db, composer.contactId(), composer.replyPlatform()))
            queueDraft(db, conversationId(target->account, target->chatId), text, u"mcp"_s);
        m_app.delivery().refresh();
        for (const PendingDraft& draft : m_app.delivery().pending())
            m_screens.drafts.askToConfirm(draft.id);
        wait(Milliseconds(200));
    }

    /// The pane beside the thread, from its head or from its foot.
    void scrollContact(bool toTheFoot)
    {
        if (QQuickItem* view = item(u"contact.view"_s))
            view->setProperty("contentY",
                toTheFoot ? std::max(0.0, view->property("contentHeight").toDouble() - view->height()) : 0.0);
        wait(Milliseconds(100));
    }

    void searchFor(const QString& words)
    {
        m_screens.inbox.setSearch(words);
        wait(Milliseconds(500));
    }

    void inboxScreens();
    void assistantScreens();
    void contactScreens();
    void approvalScreens();
    void settingsScreens();
    void hubScreens();
    void wallScreens();

    QString m_folder;
    StandingClock m_clock;
    PictureDesktop* m_desktop = nullptr;
    PictureModel* m_model = nullptr;
    CorvaneApp m_app;
    Screens m_screens;
    MainWindow m_window;
    PanelWindow m_panel;
    int m_events = 0;
};

void Gallery::inboxScreens()
{
    InboxView& inbox = m_screens.inbox;
    save(u"inbox-list"_s, { Look::Light, Look::Dark, Look::LightSmall });

    openThread(u"Megan Price"_s);
    save(u"inbox-thread"_s, { Look::Light, Look::Dark, Look::LightSmall, Look::DarkSmall });
    openThread(u"Taller · Team"_s);
    save(u"inbox-group"_s, { Look::Light, Look::Dark });
    openThread(u"Hannah Fischer"_s);
    save(u"inbox-mail"_s, { Look::Light });
    drawFiles(
        m_app, m_screens, [this](Milliseconds pause) { wait(pause); },
        [this](const QString& name, Look look) { save(name, { look }); });
    openThread(u"Megan Price"_s);
    queueReply(u"Hi Megan, the second firing is done. Shall I bring the bowls on Thursday?"_s);
    inbox.composer()->setText(u"Good morning! I have just unpacked the kiln."_s);
    save(u"inbox-draft"_s, { Look::Light, Look::Dark });
    (void)rejectDraft(m_app.engine().db(), m_screens.drafts.confirmDraft());
    m_app.delivery().refresh();
    inbox.composer()->setText({});
    inbox.composeSheet()->open();
    save(u"inbox-new-message"_s, { Look::Light, Look::Dark });
    inbox.composeSheet()->close();
    press(Qt::Key_K, Qt::ControlModifier);
    save(u"palette-open"_s, { Look::Light, Look::Dark });
    press(Qt::Key_Escape);
    press(Qt::Key_F1);
    save(u"shortcuts-open"_s, { Look::Light, Look::DarkSmall });
    press(Qt::Key_Escape);

    searchFor(u"glaze"_s);
    save(u"inbox-search"_s, { Look::Light, Look::Dark });
    searchFor(u"nothing like this"_s);
    save(u"inbox-nothing-found"_s, { Look::Dark });
    searchFor({});

    inbox.setViewModeWord(u"messages"_s);
    save(u"inbox-by-day"_s, { Look::Light });
    inbox.setViewModeWord(u"contacts"_s);

    inbox.setChannelFilter(u"EMAIL"_s);
    save(u"inbox-filtered"_s, { Look::Light });
    inbox.setChannelFilter(u"DISCORD"_s);
    save(u"inbox-nothing-filtered"_s, { Look::Light });
    inbox.setChannelFilter({});

    m_app.engine().db().run(u"INSERT INTO sync_health (source, status, updated_at) VALUES ('inbox','error',0);"_s);
    m_clock.move(std::chrono::hours(3));
    inbox.reload();
    save(u"inbox-stale"_s, { Look::Light, Look::Dark });
    m_clock.move(-std::chrono::hours(3));
    m_app.engine().db().run(u"DELETE FROM sync_health;"_s);
    inbox.reload();

    for (int row : { 1, 3, 4 }) {
        const QAbstractItemModel* contacts = inbox.contacts();
        inbox.bulk()->toggle(contacts->index(row, 0).data(contacts->roleNames().key("id")).toString());
    }
    save(u"inbox-picked"_s, { Look::Light });
    inbox.archiveChecked();
    save(u"inbox-undo"_s, { Look::Dark });
    inbox.setFilterWord(u"archived"_s);
    inbox.bulk()->all();
    save(u"inbox-archived"_s, { Look::Light });
    inbox.setFilterWord(u"all"_s);
    inbox.undo();
    if (QQuickItem* list = item(u"inbox.list"_s)) {
        list->forceActiveFocus();
        press(Qt::Key_Menu);
        save(u"inbox-row-menu"_s, { Look::Light, Look::Dark });
        press(Qt::Key_Escape);
    }
    m_window.window()->close();
    save(u"closing-notice"_s, { Look::Light });
    press(Qt::Key_Escape);
}

void Gallery::assistantScreens()
{
    InboxView& inbox = m_screens.inbox;
    openThread(u"Megan Price"_s);
    m_model->says
        = u"Four of the blue ones, and I was not even there! Thank you, Megan. I told Petra Lindqvist that she "
          u"can fetch hers on Thursday at 16:30."_s;
    inbox.assistant()->draftReply();
    save(u"assistant-draft"_s, { Look::Light, Look::Dark, Look::LightSmall });
    inbox.assistant()->accept();
    save(u"assistant-taken"_s, { Look::Light });
    m_model->says.clear();
    inbox.assistant()->rewrite(u"shorten"_s);
    save(u"assistant-busy"_s, { Look::Light });
    inbox.assistant()->dismiss();
    press(Qt::Key_J, Qt::ControlModifier);
    for (const int key : { Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Right })
        press(key);
    save(u"assistant-menu"_s, { Look::Light, Look::DarkSmall });
    press(Qt::Key_Escape);
    press(Qt::Key_Escape);
    inbox.composer()->setText({});

    m_model->says = u"- Situation: Megan keeps the studio open and asks what to do with a visitor [M].\n- Key points:\n"
                    u"  - The visitor bought four of the blue ones [M].\n  - She paid in cash; it is in the tin [M].\n"
                    u"- Next action: thank her and count the tin [M]."_s;
    inbox.summary()->summarize();
    save(u"assistant-summary"_s, { Look::Light, Look::Dark });
    inbox.summary()->dismiss();
    press(Qt::Key_J, Qt::ControlModifier);
    for (const int key : { Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return })
        press(key);
    m_model->says
        = u"She sold four of the blue ones for cash and put the money in the tin.\n\nThe local context does not "
          u"say how much it was."_s;
    if (QQuickItem* question = item(u"askLumo.question"_s))
        question->setProperty("text", u"What did she sell today?"_s);
    inbox.askLumo()->ask(u"What did she sell today?"_s);
    save(u"assistant-ask"_s, { Look::Light, Look::Dark });
    press(Qt::Key_Escape);

    m_model->setReason(u"No model server answers at http://127.0.0.1:11434 or http://127.0.0.1:8080."_s);
    inbox.assistant()->draftReply();
    save(u"assistant-missing"_s, { Look::Light, Look::Dark });
    inbox.assistant()->dismiss();
    m_screens.settings.setSection(u"assistant"_s);
    m_screens.shell.openSettings();
    save(u"settings-assistant-missing"_s, { Look::Light });
    m_screens.shell.closeSettings();
    m_model->setReason({});
}

void Gallery::contactScreens()
{
    InboxView& inbox = m_screens.inbox;
    inbox.select(u"ct:WHATSAPP:351900000190@s.whatsapp.net"_s);
    wait(Milliseconds(800)); // who may be the same person comes after a pause
    save(u"contact-pane"_s, { Look::Light, Look::Dark });
    scrollContact(true);
    save(u"contact-pane-below"_s, { Look::Light, Look::Dark });
    scrollContact(false);
    const QAbstractItemModel* suggestions = inbox.crm()->suggestions();
    inbox.crm()->mergeWith(suggestions->index(0, 0).data(suggestions->roleNames().key("id")).toString());
    save(u"contact-merged"_s, { Look::Light });
    inbox.undo();
    if (QQuickItem* add = item(u"contact.addDeal"_s))
        QMetaObject::invokeMethod(add, "clicked");
    if (QQuickItem* name = item(u"addDeal.name"_s))
        name->setProperty("text", u"Large bowls for two collectors"_s);
    save(u"contact-add-deal"_s, { Look::Light, Look::Dark });
    press(Qt::Key_Escape);
    openThread(u"Tomás Herrera"_s);
    save(u"contact-pane-empty"_s, { Look::Light });
    m_window.window()->resize(1040, 660);
    wait(Milliseconds(250));
    press(Qt::Key_I, Qt::ControlModifier);
    save(u"contact-pane-over"_s, { Look::LightSmall, Look::DarkSmall });
}

void Gallery::approvalScreens()
{
    LocalDB& db = m_app.engine().db();
    const auto look = [this] {
        m_app.delivery().refresh();
        m_app.approvals().refresh();
        wait(Milliseconds(200));
    };
    m_screens.shell.openApprovals();
    look();
    save(u"approvals-empty"_s, { Look::Light, Look::Dark });
    m_screens.approvals.log()->setShown(true);
    wait(Milliseconds(200));
    save(u"approvals-nothing-decided"_s, { Look::Light });
    m_screens.approvals.log()->setShown(false);
    m_screens.panel.setTab(u"approvals"_s);
    savePanel(u"panel-approvals-empty"_s, { Look::Light });

    letItemsWait(db, contactNamed(u"Megan Price"_s), contactNamed(u"Hannah Fischer"_s));
    look();
    save(u"approvals-filled"_s, { Look::Light, Look::Dark, Look::LightSmall });
    savePanel(u"panel-approvals"_s, { Look::Light, Look::Dark });
    const QString first = m_screens.approvals.rows()->index(1, 0).data(Qt::UserRole).toString();
    m_screens.approvals.approve(first);
    wait(Milliseconds(200));
    save(u"approvals-armed"_s, { Look::Light, Look::Dark });
    m_screens.approvals.undo(first);
    m_screens.approvals.approve(u"decision:w1"_s);
    wait(Milliseconds(200));
    save(u"approvals-asked"_s, { Look::Light, Look::Dark });
    m_screens.approvals.stepBack();
    m_screens.approvals.edit(first);
    wait(Milliseconds(200));
    save(u"approvals-edited"_s, { Look::Light });
    m_screens.approvals.editor()->close();
    m_screens.panel.setTab(u"now"_s);
    savePanel(u"panel-now"_s, { Look::Light, Look::Dark });
    m_screens.shell.openSettings();
    m_screens.settings.setSection(u"approvals"_s);
    save(u"settings-approvals-waiting"_s, { Look::Light, Look::Dark });
    m_screens.settings.setSection(u"accounts"_s);
    decideSome(m_app.delivery());
    m_screens.shell.openApprovals();
    m_screens.approvals.log()->setShown(true);
    wait(Milliseconds(200));
    save(u"approvals-decided"_s, { Look::Light, Look::Dark, Look::LightSmall });
    m_screens.approvals.log()->setShown(false);
    m_screens.shell.closeApprovals();
    db.run(u"DELETE FROM outbound_draft WHERE status IN ('pending','failed');"_s);
    db.run(u"DELETE FROM crm_update_proposal WHERE status='pending';"_s);
    db.run(u"DELETE FROM work_decision WHERE status='proposed';"_s);
    look();
}

void Gallery::settingsScreens()
{
    // A second phone that waits to be linked, an account that is paused, one whose token is refused, one that
    // is starting, and one whose engine does not exist, so that it gave up.
    qputenv("CORVANE_DEMO_PAIRING_SECONDS", "3600");
    AccountStore& accounts = m_app.store();
    const Account phone = accounts.add(u"Workshop phone"_s, Channel::WhatsApp);
    m_app.engine().start(phone);
    Account paused = accounts.add(u"Marta Vidal"_s, Channel::LinkedIn);
    paused.paused = true;
    accounts.update(paused);
    wait(Milliseconds(2500));
    m_clock.waitAtMost(Milliseconds(50));
    const Account gaveUp = accounts.add(u"Old phone"_s, Channel::IMessage);
    m_app.engine().start(gaveUp);
    const Account refused = accounts.add(u"Discord"_s, Channel::Discord);
    m_app.engine().handleEvent(refused.id, uR"({"type":"status","state":"logged_out"})"_s, Speaker::Current);
    while (m_app.engine().runtime(gaveUp.id).status != WAStatus::Error)
        wait(Milliseconds(50));
    m_clock.waitAtMost(Milliseconds::max());
    const Account connecting = accounts.add(u"Slack"_s, Channel::Slack);
    m_app.engine().handleEvent(connecting.id, uR"({"type":"status","state":"connecting"})"_s, Speaker::Current);

    m_screens.shell.openSettings();
    save(u"settings-accounts"_s, { Look::Light, Look::Dark, Look::LightSmall });
    m_screens.settings.pairing()->open(phone.id);
    save(u"settings-pairing"_s, { Look::Light, Look::Dark });
    m_screens.settings.pairing()->close();
    wait(Milliseconds(200));
    drawConnectSheets(
        m_screens.settings, [this](Milliseconds pause) { wait(pause); },
        [this](const QString& name, Look look) { save(name, { look }); });
    m_screens.settings.setSection(u"approvals"_s);
    m_screens.settings.controlChat()->choose(conversationId(u"taller-vidal"_s, u"34600000109@s.whatsapp.net"_s));
    save(u"settings-approvals"_s, { Look::Light, Look::Dark });
    m_app.engine().db().run(u"INSERT INTO work_memory_entries(id, scope, body, created_at) VALUES"
                            u"('g1','business','The studio closes for two weeks in August.','1'),"
                            u"('g2','owner','Signs with Marta, never with the surname.','2');"_s);
    m_screens.settings.setSection(u"assistant"_s);
    save(u"settings-assistant"_s, { Look::Light, Look::Dark, Look::LightSmall });
    m_screens.settings.setSection(u"voice"_s);
    save(u"settings-voice"_s, { Look::Light, Look::Dark });
    addSpeechModels(m_app.voice().store, *m_screens.settings.voice());
    save(u"settings-voice-models"_s, { Look::Light, Look::LightSmall });
    m_screens.settings.setSection(u"sync"_s);
    save(u"settings-sync"_s, { Look::Light });
    m_screens.settings.setSection(u"system"_s);
    save(u"settings-system"_s, { Look::Light, Look::Dark });
    m_screens.shell.closeSettings();
}

void Gallery::hubScreens()
{
    for (const char* hub : { "lumo", "gtm", "cx", "ops" }) {
        m_screens.shell.selectHub(QString::fromLatin1(hub));
        save(u"hub-"_s + QString::fromLatin1(hub), { qstrcmp(hub, "gtm") == 0 ? Look::Dark : Look::Light });
    }
    m_screens.shell.selectHub(u"inbox"_s);
}

void Gallery::wallScreens()
{
    m_app.session().signOut();
    save(u"wall-signed-out"_s, { Look::Light, Look::DarkSmall });
    m_screens.wall.setEmail(u"marta@tallervidal.example"_s);
    m_screens.wall.setPassword(u"twelve letters"_s);
    save(u"wall-filled"_s, { Look::Dark });
}

}

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--decode") == 0)
        return runDecodeChild();
    QGuiApplication application(argc, argv);
    const qint64 nowMs = qEnvironmentVariable("CORVANE_DEMO_NOW").toLongLong();
    if (argc != 2 || nowMs <= 0) {
        std::fprintf(stderr, "usage: tools/gallery\n");
        return 2;
    }
    QGuiApplication::styleHints()->setCursorFlashTime(0);
    const QString folder = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(folder);
    Gallery(folder, nowMs).draw();
    return 0;
}
