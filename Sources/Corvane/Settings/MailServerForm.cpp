#include "Foundation/Literals.h"
#include "Settings/MailForm.h"

#include <algorithm>

namespace corvane {

MailServerForm::MailServerForm(const QString& name, const Ports& usual)
    : m_usual(usual)
    , m_host({ name.toLower() + u".host"_s, u"%1 server"_s.arg(name), {} })
    , m_port({ name.toLower() + u".port"_s, u"Port"_s, {} })
{
    for (const FormField* field : { &m_host, &m_port })
        connect(field, &FormField::textChanged, this, &MailServerForm::changed);
}

QList<Choice> MailServerForm::securities() const
{
    return { { u"tls"_s, u"TLS"_s }, { u"starttls"_s, u"STARTTLS"_s } };
}

QString MailServerForm::security() const
{
    return m_startTls ? u"starttls"_s : u"tls"_s;
}

QString MailServerForm::securityLabel() const
{
    const QList<Choice> all = securities();
    return std::ranges::find(all, security(), &Choice::id)->label;
}

void MailServerForm::setSecurity(const QString& id)
{
    if (id == security())
        return;
    const bool isUsual = m_port.trimmed() == usualPort();
    m_startTls = id == u"starttls";
    if (isUsual)
        m_port.fill(usualPort());
    Q_EMIT changed();
}

std::optional<MailServer> MailServerForm::value() const
{
    const QString host = m_host.trimmed().toLower();
    if (host.isEmpty())
        return std::nullopt;
    const QString port = m_port.trimmed().isEmpty() ? usualPort() : m_port.trimmed();
    return MailServer { host, port.toUShort(), m_startTls };
}

void MailServerForm::fill(const std::optional<MailServer>& server)
{
    m_host.fill(server ? server->host : QString());
    m_port.fill(server ? QString::number(server->port) : QString());
    m_startTls = server && server->startTls;
    Q_EMIT changed();
}

QString MailServerForm::usualPort() const
{
    return QString::number(m_startTls ? m_usual.startTls : m_usual.tls);
}

}
