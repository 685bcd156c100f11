#include "Settings/PairingSheet.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"

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
    return QStringLiteral("Link ") + (account ? account->name : QString());
}

QString PairingSheet::stateText() const
{
    if (connected())
        return QStringLiteral("Connected");
    return qr().isEmpty() ? QStringLiteral("Starting")
                          : QStringLiteral("WhatsApp → Settings → Linked Devices → Link a Device, then scan.");
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
