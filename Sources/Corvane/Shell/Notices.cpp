#include "Shell/Notices.h"

#include "Calendar/CalendarServices.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineSpec.h"
#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Shell/ContentView.h"
#include "Store/Core/StoreHealth.h"
#include "Web/SessionStore.h"

#include <algorithm>

namespace corvane {

namespace {

Choice action(const char* id, const QString& label)
{
    return { QString::fromLatin1(id), label };
}

Notice notice(const char* id, const char* tone, const QString& text, const QList<Choice>& actions = {})
{
    return { QString::fromLatin1(id), QString::fromLatin1(tone), text, actions };
}

}

QString describe(StoreFault fault, const AppPaths& paths)
{
    const QString waits = u" New messages wait until then, and nothing is lost."_s;
    switch (fault) {
    case StoreFault::None:
    case StoreFault::Damaged:
    case StoreFault::NotADatabase:
        return {};
    case StoreFault::Full:
        return u"The disk is full. Make room on the disk that holds %1."_s.arg(paths.applicationSupport) + waits;
    case StoreFault::ReadOnly:
        return u"The database is read-only. Make %1 and its folder writable for you."_s.arg(paths.database()) + waits;
    case StoreFault::InputOutput:
        return u"The disk does not accept writes to %1. Check that it is connected and working."_s.arg(
                   paths.applicationSupport)
            + waits;
    }
    Q_UNREACHABLE();
}

Notices::Notices(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
{
    connect(&m_at.health, &StoreHealth::changed, this, &Notices::changed);
    connect(&m_at.keychain, &Keychain::changed, this, &Notices::changed);
    connect(&m_at.session, &SessionStore::changed, this, &Notices::changed);
    connect(&m_at.accounts, &AccountStore::accountsChanged, this, &Notices::changed);
    connect(&m_at.content, &ContentView::showsWallChanged, this, &Notices::changed);
    connect(&m_at.calendar.reminder, &MeetingReminder::changed, this, &Notices::changed);
    connect(&m_at.calendar.commands, &CalendarCommands::changed, this, &Notices::changed);
}

QList<Notice> Notices::items() const
{
    QList<Notice> items;
    if (const QString text = describe(m_at.health.fault(), m_at.paths); !text.isEmpty())
        items.append(notice("store", "bad", text));
    if (m_at.session.asksAboutLink())
        items.append(notice("link", "warn",
            m_at.session.signedIn()
                ? u"Sign in as someone else? A sign-in link was opened that was not asked for here."_s
                : u"Sign in? A sign-in link was opened that was not asked for here."_s,
            { action("accept", u"Sign in"_s), action("ignore", u"Ignore"_s) }));
    // The wall shows it.
    if (!m_at.session.lastErrorText().isEmpty() && !m_at.content.showsWall())
        items.append(notice("signIn", "bad", u"Sign-in failed: "_s + m_at.session.lastErrorText(),
            { action("again", u"Try again"_s), action("dismiss", u"Dismiss"_s) }));
    if (accountsWait())
        items.append(notice("keyring", "warn", u"The desktop's keyring is locked. Accounts wait for their passwords."_s,
            { action("unlock", u"Unlock…"_s) }));
    if (const QString text = m_at.calendar.reminder.text(); !text.isEmpty())
        items.append(
            notice("meeting", "plain", text, { action("prepare", u"Open brief"_s), action("dismiss", u"Dismiss"_s) }));
    if (const QString text = m_at.calendar.commands.undoText(); !text.isEmpty())
        items.append(notice("event", "plain", text, { action("undo", u"Undo"_s), action("dismiss", u"Dismiss"_s) }));
    return items;
}

void Notices::perform(const QString& id, const QString& action)
{
    if (id == "link"_L1)
        action == "accept"_L1 ? m_at.session.acceptLink() : m_at.session.ignoreLink();
    else if (id == "signIn"_L1)
        action == "again"_L1 ? m_at.session.startSignIn() : m_at.session.forgetError();
    else if (id == "keyring"_L1)
        m_at.keychain.unlock();
    else if (id == "meeting"_L1)
        answerReminder(action == "prepare"_L1);
    else if (id == "event"_L1)
        action == "undo"_L1 ? m_at.calendar.commands.undo() : m_at.calendar.commands.dismiss();
}

void Notices::answerReminder(bool prepares)
{
    if (const auto meeting = m_at.calendar.reminder.meeting(); meeting && prepares) {
        m_at.calendar.prep.prepare(*meeting);
        Q_EMIT calendarRequested();
    }
    m_at.calendar.reminder.dismiss();
}

bool Notices::accountsWait() const
{
    return m_at.keychain.isLocked() && std::ranges::any_of(m_at.accounts.accounts(), [this](const Account& account) {
        return keepsSecret(account.channel()) && m_at.keychain.isAwaited(account.slug);
    });
}

}
