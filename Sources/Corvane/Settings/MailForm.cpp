#include "Settings/MailForm.h"

#include "Engines/AccountStore.h"
#include "Foundation/Literals.h"
#include "Platform/Keychain.h"

#include <QProcess>
#include <algorithm>

namespace corvane {

namespace {

const QString addressField = u"email"_s;
const QString passwordField = u"password"_s;
const QString userField = u"userName"_s;
const QString tokenField = u"tokenCommand"_s;

QString domainOf(const QString& address)
{
    return address.mid(address.lastIndexOf(u'@') + 1).toLower();
}

/// The inverse of `QProcess::splitCommand`.
QString commandLine(const QStringList& command)
{
    QStringList words;
    for (QString word : command) {
        const bool isPlain = !word.isEmpty() && std::ranges::none_of(word, [](QChar c) { return c.isSpace(); });
        word.replace(u'"', u"\"\"\""_s);
        words.append(isPlain ? word : u'"' + word + u'"');
    }
    return words.join(u' ');
}

}

MailForm::MailForm(
    const AccountSetup& setup, const AppPaths& paths, ProcessLauncher& launcher, Scheduler& scheduler, QObject* parent)
    : Form(parent)
    , m_setup(setup)
    , m_probe(paths, launcher, scheduler)
    , m_imap(u"IMAP"_s, { .tls = 993, .startTls = 143 })
    , m_smtp(u"SMTP"_s, { .tls = 465, .startTls = 587 })
{
    setFields({
        { addressField, u"Email address"_s, u"you@company.com"_s },
        { .id = passwordField, .label = u"App password"_s, .placeholder = u"App password"_s, .masked = true },
        { .id = userField,
            .label = u"User name"_s,
            .placeholder = u"The email address"_s,
            .folded = true,
            .narrow = true },
        { .id = tokenField,
            .label = u"Token command"_s,
            .placeholder = u"Instead of a password"_s,
            .folded = true,
            .narrow = true },
    });
    for (MailServerForm* server : { &m_imap, &m_smtp })
        connect(server, &MailServerForm::changed, this, &MailForm::edited);
}

void MailForm::edited()
{
    if (isOpen() && !busy())
        enter(Stage::Asking);
    else
        Q_EMIT changed();
}

QString MailForm::title() const
{
    const auto account = m_setup.accounts.find(m_accountId);
    return account ? editTitle(account->name) : u"Connect email"_s;
}

QString MailForm::hint() const
{
    return std::ranges::find(connectFlows(), Channel::Email, &ConnectFlow::channel)->hint;
}

QString MailForm::serversText() const
{
    const auto words = [](const std::optional<MailServer>& server) {
        return server ? u"%1:%2"_s.arg(server->host).arg(server->port) : QString();
    };
    const QStringList servers { words(m_imap.value()), words(m_smtp.value()) };
    const QString text = QStringList(servers.filter(u":"_s)).join(u" · "_s);
    return text.isEmpty() ? u"Detected from the address"_s : text;
}

void MailForm::setServersShown(bool shown)
{
    if (shown == m_serversShown)
        return;
    m_serversShown = shown;
    Q_EMIT changed();
}

QString MailForm::messageKind() const
{
    if (m_stage == Stage::Failed)
        return u"bad"_s;
    return m_stage == Stage::Confirming || m_stage == Stage::NeedsToken ? u"warn"_s : u"plain"_s;
}

QString MailForm::buttonLabel() const
{
    if (m_stage == Stage::Confirming)
        return u"Use these servers"_s;
    if (m_stage == Stage::Failed)
        return u"Try again"_s;
    return m_accountId.isNull() ? u"Connect"_s : saveLabel();
}

bool MailForm::complete() const
{
    const QString address = typed(addressField);
    return address.contains(u'@') && !domainOf(address).isEmpty()
        && (!typed(passwordField).isEmpty() || !typed(tokenField).isEmpty());
}

void MailForm::open()
{
    fill({}, {}, {});
    enter(Stage::Asking);
}

void MailForm::edit(const Account& account)
{
    fill(account.id, account.email.value_or(QString()),
        mailSettings(m_setup.keychain.get(account.slug).value_or(QString())));
    enter(Stage::Asking);
}

void MailForm::close()
{
    if (!isOpen())
        return;
    enter(Stage::Closed);
    fill({}, {}, {});
}

void MailForm::fill(const QUuid& accountId, const QString& address, const MailSettings& settings)
{
    m_probe.cancel();
    m_accountId = accountId;
    field(addressField).fill(address);
    field(addressField).setReadOnly(!accountId.isNull()); // another address is another mailbox
    field(passwordField).fill(settings.password);
    field(userField).fill(settings.user);
    field(tokenField).fill(commandLine(settings.tokenCommand));
    m_imap.fill(settings.imap);
    m_smtp.fill(settings.smtp);
    m_others = settings.others;
    m_found = {};
    m_foundFor = domainOf(address);
    m_serversShown = false;
}

void MailForm::cancel()
{
    if (!busy())
        return close();
    m_probe.cancel();
    enter(Stage::Asking);
}

void MailForm::submit()
{
    if (busy() || !isOpen() || !complete())
        return;
    if (m_stage == Stage::Confirming)
        m_found.strangers.clear();
    if (const QString reason = problem(); !reason.isEmpty())
        return enter(Stage::Failed, reason);
    if (domainOf(typed(addressField)) != m_foundFor) {
        for (MailServerForm* server : { &m_imap, &m_smtp }) {
            if (!server->host()->isTyped())
                server->fill({});
        }
    }
    if (m_imap.value() && m_smtp.value())
        goOn();
    else
        findServers();
}

/// What is wrong with the input; empty if it is valid.
QString MailForm::problem() const
{
    for (const Account& account : m_setup.accounts.accounts()) {
        if (account.id != m_accountId && account.channel() == Channel::Email
            && account.email.value_or(QString()).compare(typed(addressField), Qt::CaseInsensitive) == 0)
            return u"%1 is connected already."_s.arg(typed(addressField));
    }
    for (const MailServerForm* server : { &m_imap, &m_smtp }) {
        if (const auto value = server->value(); value && value->port == 0)
            return u"A port is a number from 1 to 65535."_s;
    }
    return {};
}

void MailForm::findServers()
{
    const QString address = typed(addressField);
    enter(Stage::Finding, u"Looking for the mail servers of %1…"_s.arg(domainOf(address)));
    m_probe.findServers(address, [this, address](const Result<FoundMailServers>& found) {
        if (!found)
            return enter(Stage::Failed, found.error().message);
        m_foundFor = domainOf(address);
        take(*found);
    });
}

void MailForm::take(const FoundMailServers& found)
{
    m_found = found;
    if (!m_imap.value())
        m_imap.fill(found.imap);
    if (!m_smtp.value())
        m_smtp.fill(found.smtp);
    if (found.needsToken && typed(tokenField).isEmpty()) {
        m_serversShown = true;
        return enter(Stage::NeedsToken, found.hint);
    }
    goOn();
}

void MailForm::goOn()
{
    const auto isUsed = [this](const QString& host) {
        return m_imap.value()->host == host || m_smtp.value()->host == host;
    };
    m_found.strangers.removeIf([&](const QString& host) { return !isUsed(host); }); // the user entered another
    if (m_found.strangers.isEmpty())
        return trySignIn();
    m_serversShown = true;
    enter(Stage::Confirming,
        u"The mail of %1 seems to be kept at %2. The password is sent there only if you say that this is right."_s.arg(
            m_foundFor, m_found.strangers.join(u" and "_s)));
}

void MailForm::trySignIn()
{
    enter(Stage::Trying, u"Signing in at %1…"_s.arg(m_imap.value()->host));
    m_probe.signIn(typed(addressField), settings(), [this](const Result<void>& answer) {
        if (answer)
            return keep();
        m_serversShown = m_serversShown || m_found.isGuess;
        enter(Stage::Failed, QStringList({ answer.error().message, m_found.hint }).join(u' ').trimmed());
    });
}

void MailForm::keep()
{
    const QString address = typed(addressField);
    const QString secret = mailSecret(settings());
    const QUuid edited = m_accountId;
    close();
    if (edited.isNull())
        m_setup.add(Channel::Email, { address, address, secret });
    else if (const auto account = m_setup.accounts.find(edited))
        m_setup.change(*account, secret);
}

void MailForm::enter(Stage stage, const QString& message)
{
    m_stage = stage;
    m_message = message;
    Q_EMIT changed();
}

MailSettings MailForm::settings() const
{
    return { typed(passwordField), QProcess::splitCommand(typed(tokenField)), typed(userField), m_imap.value(),
        m_smtp.value(), m_others };
}

}
