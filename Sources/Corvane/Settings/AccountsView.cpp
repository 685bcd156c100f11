#include "Settings/AccountsView.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Engines/EngineSpec.h"
#include "Platform/Keychain.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/AccountQueries.h"

#include <algorithm>

namespace corvane {

AccountsView::AccountsView(
    const AccountSetup& setup, const AppPaths& paths, ProcessLauncher& launcher, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_setup(setup)
    , m_scheduler(scheduler)
    , m_connectForm(setup)
    , m_mailForm(setup, paths, launcher, scheduler)
    , m_pairing(setup.accounts, setup.engine)
    , m_refresh(scheduler, Milliseconds(250), [this] { refresh(); })
{
    connect(&m_setup.accounts, &AccountStore::accountsChanged, this, &AccountsView::refresh);
    connect(&m_setup.engine, &EngineManager::runtimeChanged, this, [this] { m_refresh.request(); });
    connect(&m_setup.engine, &EngineManager::inboxRevisionChanged, this, [this] {
        if (m_visible)
            m_refresh.request();
    });
    connect(&m_connectForm, &ConnectForm::added, this, [this](const QUuid& accountId) {
        if (const auto account = m_setup.accounts.find(accountId); account && account->channel() == Channel::WhatsApp)
            m_pairing.open(accountId);
    });
    refresh();
}

void AccountsView::setVisible(bool visible)
{
    if (std::exchange(m_visible, visible) != visible && visible)
        refresh();
}

void AccountsView::perform(const QString& accountId, const QString& actionId)
{
    AccountStore& accounts = m_setup.accounts;
    EngineManager& engine = m_setup.engine;
    std::optional<Account> account = accounts.find(QUuid::fromString(accountId));
    if (!account)
        return;
    if (actionId == "start"_L1) {
        if (m_setup.keychain.isAwaited(account->slug))
            m_setup.keychain.unlock();
        engine.resume(*account);
    } else if (actionId == "pause"_L1) {
        engine.stop(*account);
        account->paused = true;
        accounts.update(*account);
    } else if (actionId == "edit"_L1) {
        edit(*account);
    } else if (actionId == "startAtBoot"_L1) {
        account->startAtBoot = !account->startAtBoot.value_or(false);
        accounts.update(*account);
    } else if (actionId == "pair"_L1) {
        m_pairing.open(account->id);
    } else if (actionId == "resetPairing"_L1) {
        engine.resetAuth(*account);
        engine.start(*account);
        m_pairing.open(account->id);
    } else if (actionId == "resetSession"_L1) {
        engine.resetAuth(*account);
        engine.start(*account);
    } else if (actionId == "sync"_L1) {
        engine.sync(*account);
    } else if (actionId == "remove"_L1) {
        engine.forget(*account);
        if (keepsSecret(account->channel()))
            m_setup.keychain.remove(account->slug);
        accounts.remove(*account);
        engine.db().watch().tell(StoreSubject::Drafts); // what was approved for it fails with the reason
    }
}

void AccountsView::connectChannel(const QString& channel)
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

void AccountsView::edit(const Account& account)
{
    if (account.channel() == Channel::Email)
        m_mailForm.edit(account);
    else
        m_connectForm.edit(account);
}

void AccountsView::refresh()
{
    if (m_visible)
        m_lastMessages = fetchLastMessageTimes(m_setup.engine.db());
    const DateWords words(m_scheduler.nowMs());
    QList<AccountRow> rows;
    for (const ConnectFlow& flow : corvane::connectFlows()) {
        for (const Account& account : m_setup.accounts.accounts()) {
            if (account.channel() == flow.channel)
                rows.append(accountRow(
                    account, m_setup.engine.runtime(account.id), words.listTime(m_lastMessages.value(account.slug))));
        }
    }
    m_rows.assign(rows);
}

}
