#include "Settings/IntegrationsView.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Engines/EngineSpec.h"
#include "Foundation/Literals.h"
#include "Platform/Keychain.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/AccountQueries.h"
#include "Web/WebServices.h"

#include <algorithm>

namespace corvane {

IntegrationsView::IntegrationsView(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
    , m_setup { m_at.accounts, m_at.engine, m_at.keychain }
    , m_connectForm(m_setup)
    , m_mailForm(m_setup, m_at.paths, m_at.launcher, m_at.scheduler)
    , m_pairing(m_at.accounts, m_at.engine)
    , m_controlChat(m_at.engine.db())
    , m_assistant(m_at.ai, m_at.defaults, m_at.engine.db(), m_at.scheduler)
    , m_sync(m_at.session, m_at.engine.db())
    , m_web(m_at.session, m_at.web.sync, m_at.scheduler)
    , m_push({ m_at.web.push, m_at.session, m_at.accounts, m_at.engine.db() })
    , m_system(m_at.defaults, m_at.keychain, m_at.paths)
    , m_voice(m_at.voice, m_at.defaults)
    , m_toolServer(m_at.engine)
    , m_refresh(m_at.scheduler, Milliseconds(250), [this] { refreshRows(); })
    , m_section(u"accounts"_s)
{
    const auto request = [this] {
        m_refresh.request();
    };
    connect(&m_at.accounts, &AccountStore::accountsChanged, this, &IntegrationsView::refreshRows);
    connect(&m_at.engine, &EngineManager::runtimeChanged, this, request);
    connect(&m_connectForm, &ConnectForm::added, this, [this](const QUuid& accountId) {
        if (const auto account = m_at.accounts.find(accountId); account && account->channel() == Channel::WhatsApp)
            m_pairing.open(accountId);
    });
    connect(&m_at.engine, &EngineManager::inboxRevisionChanged, this, [this, request] {
        if (m_visible)
            request();
    });
    m_sectionAsked = m_at.notifications.observe(notifications::openSettings,
        [this](const Notification& notification) { setSection(notification.object.value_or(QString())); });
    refreshRows();
}

const QList<SettingsSection>& IntegrationsView::sections()
{
    static const QList<SettingsSection> all {
        { u"accounts"_s, u"Accounts"_s, u"link"_s },
        { u"approvals"_s, u"Approvals"_s, u"approvals"_s },
        { u"assistant"_s, u"Assistant"_s, u"hub-lumo"_s },
        { u"voice"_s, u"Voice"_s, u"microphone"_s },
        { u"calls"_s, u"Calls"_s, u"call-start"_s },
        { u"calendar"_s, u"Calendar"_s, u"view-calendar"_s },
        { u"sync"_s, u"Sync"_s, u"sync"_s },
        { u"care"_s, u"Care"_s, u"dialog-ok"_s },
        { u"system"_s, u"System"_s, u"computer"_s },
    };
    return all;
}

QString IntegrationsView::sectionLabel() const
{
    return std::ranges::find(sections(), m_section, &SettingsSection::id)->label;
}

void IntegrationsView::setSection(const QString& id)
{
    const bool known
        = std::ranges::any_of(sections(), [&](const SettingsSection& section) { return section.id == id; });
    if (!known || id == m_section)
        return;
    m_section = id;
    readSection();
    Q_EMIT sectionChanged();
}

void IntegrationsView::setLocalAccess(LocalAccess& access)
{
    m_localAccess = &access;
    connect(&access, &LocalAccess::accountsAsked, this, [this] { setSection(u"accounts"_s); });
}

void IntegrationsView::setCare(BackupKeeper& backups, DoctorView& doctor)
{
    m_backups = &backups;
    m_doctor = &doctor;
}

void IntegrationsView::setVisible(bool visible)
{
    if (visible == m_visible)
        return;
    m_visible = visible;
    readSection();
    Q_EMIT visibleChanged();
    if (!visible)
        return;
    refreshRows();
}

void IntegrationsView::readSection()
{
    if (m_visible && m_section == "approvals"_L1)
        m_controlChat.refresh();
    if (m_visible && m_section == "sync"_L1) {
        m_sync.refresh();
        m_push.refresh();
    }
    m_assistant.setVisible(m_visible && m_section == "assistant"_L1);
}

void IntegrationsView::perform(const QString& accountId, const QString& actionId)
{
    std::optional<Account> account = m_at.accounts.find(QUuid::fromString(accountId));
    if (!account)
        return;
    if (actionId == "start"_L1) {
        if (m_at.keychain.isAwaited(account->slug))
            m_at.keychain.unlock();
        m_at.engine.resume(*account);
    } else if (actionId == "pause"_L1) {
        m_at.engine.stop(*account);
        account->paused = true;
        m_at.accounts.update(*account);
    } else if (actionId == "edit"_L1) {
        editAccount(*account);
    } else if (actionId == "startAtBoot"_L1) {
        account->startAtBoot = !account->startAtBoot.value_or(false);
        m_at.accounts.update(*account);
    } else if (actionId == "pair"_L1) {
        m_pairing.open(account->id);
    } else if (actionId == "resetPairing"_L1) {
        m_at.engine.resetAuth(*account);
        m_at.engine.start(*account);
        m_pairing.open(account->id);
    } else if (actionId == "resetSession"_L1) {
        m_at.engine.resetAuth(*account);
        m_at.engine.start(*account);
    } else if (actionId == "sync"_L1) {
        m_at.engine.sync(*account);
    } else if (actionId == "remove"_L1) {
        m_at.engine.forget(*account);
        if (keepsSecret(account->channel()))
            m_at.keychain.remove(account->slug);
        m_at.accounts.remove(*account);
        m_at.engine.db().watch().tell(StoreSubject::Drafts); // what was approved for it fails with the reason
    }
}

void IntegrationsView::connectChannel(const QString& channel)
{
    const auto& flows = corvane::connectFlows();
    const ConnectFlow& flow = *std::ranges::find(flows, channelFromRaw(channel), &ConnectFlow::channel);
    if (flow.channel == Channel::Email)
        m_mailForm.open();
    else if (!flow.fields.isEmpty())
        m_connectForm.open(flow);
    else if (const auto request = connectRequest(flow.channel, {}))
        m_setup.add(flow.channel, *request);
}

void IntegrationsView::editAccount(const Account& account)
{
    if (account.channel() == Channel::Email)
        m_mailForm.edit(account);
    else
        m_connectForm.edit(account);
}

void IntegrationsView::refreshRows()
{
    if (m_visible)
        m_lastMessages = fetchLastMessageTimes(m_at.engine.db());
    const DateWords words(m_at.scheduler.nowMs());
    QList<AccountRow> rows;
    for (const ConnectFlow& flow : corvane::connectFlows()) {
        for (const Account& account : m_at.accounts.accounts()) {
            if (account.channel() == flow.channel)
                rows.append(accountRow(
                    account, m_at.engine.runtime(account.id), words.listTime(m_lastMessages.value(account.slug))));
        }
    }
    m_rows.assign(rows);
}

}
