#include "Settings/PairingSheet.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"

namespace corvane {

PairingSheet::PairingSheet(AccountStore& accounts, EngineManager& engine, QObject* parent)
    : QObject(parent)
    , m_accounts(accounts)
    , m_engine(engine)
{
    connect(&m_engine, &EngineManager::runtimeChanged, this, [this](const QUuid& accountId) {
        if (accountId == m_accountId)
            Q_EMIT changed();
    });
    connect(&m_accounts, &AccountStore::accountsChanged, this, [this] {
        if (isOpen() && !m_accounts.find(m_accountId))
            close();
    });
}

QString PairingSheet::title() const
{
    const auto account = m_accounts.find(m_accountId);
    return u"Link "_s + (account ? account->name : QString());
}

QString PairingSheet::stateText() const
{
    const RuntimeState state = m_engine.runtime(m_accountId);
    switch (state.status) {
    case WAStatus::Connected:
        return u"Connected"_s;
    case WAStatus::Error:
        return QStringList { u"Error"_s, state.lastLog, state.lastExit }.join(u'\n').trimmed();
    case WAStatus::LoggedOut:
        return u"Logged out. Choose Re-pair in Settings to get a new code."_s;
    case WAStatus::Stopped:
        return u"Stopped"_s;
    default:
        break;
    }
    return qr().isEmpty() ? u"Starting"_s : u"WhatsApp → Settings → Linked Devices → Link a Device, then scan."_s;
}

QString PairingSheet::qr() const
{
    const RuntimeState state = m_engine.runtime(m_accountId);
    return state.status == WAStatus::NeedsQR ? state.qr.value_or(QString()) : QString();
}

bool PairingSheet::connected() const
{
    return m_engine.runtime(m_accountId).status == WAStatus::Connected;
}

bool PairingSheet::failed() const
{
    const WAStatus status = m_engine.runtime(m_accountId).status;
    return status == WAStatus::Error || status == WAStatus::LoggedOut;
}

void PairingSheet::open(const QUuid& accountId)
{
    m_accountId = accountId;
    Q_EMIT changed();
}

void PairingSheet::close()
{
    m_accountId = QUuid();
    Q_EMIT changed();
}

}
