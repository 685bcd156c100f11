#include "Settings/ConnectForm.h"

#include "Engines/AccountStore.h"
#include "Platform/Keychain.h"

#include <algorithm>

namespace corvane {

ConnectForm::ConnectForm(const AccountSetup& setup, QObject* parent)
    : Form(parent)
    , m_setup(setup)
{
}

QString ConnectForm::title() const
{
    if (!m_flow)
        return {};
    const auto account = m_setup.accounts.find(m_accountId);
    return account ? editTitle(account->name) : m_flow->title;
}

QString ConnectForm::buttonLabel() const
{
    if (!m_flow)
        return {};
    return m_accountId.isNull() ? m_flow->buttonLabel : saveLabel();
}

bool ConnectForm::complete() const
{
    return request().has_value();
}

std::optional<ConnectRequest> ConnectForm::request() const
{
    return m_flow ? connectRequest(m_flow->channel, values()) : std::nullopt;
}

void ConnectForm::open(const ConnectFlow& flow)
{
    m_accountId = QUuid();
    show(flow, {});
}

void ConnectForm::edit(const Account& account)
{
    m_accountId = account.id;
    show(*std::ranges::find(connectFlows(), account.channel(), &ConnectFlow::channel),
        valuesOf(account.channel(), m_setup.keychain.get(account.slug).value_or(QString())));
}

void ConnectForm::show(const ConnectFlow& flow, const ConnectValues& values)
{
    m_flow = flow;
    setFields(flow.fields, values);
    Q_EMIT changed();
}

void ConnectForm::submit()
{
    const auto wanted = request();
    if (!wanted)
        return;
    const Channel channel = m_flow->channel;
    const QUuid edited = m_accountId;
    close();
    if (edited.isNull()) {
        Q_EMIT added(m_setup.add(channel, *wanted).id);
    } else if (const auto account = m_setup.accounts.find(edited); account && wanted->secret) {
        m_setup.change(*account, *wanted->secret);
    }
}

void ConnectForm::close()
{
    if (!m_flow)
        return;
    m_flow.reset();
    setFields({});
    Q_EMIT changed();
}

}
