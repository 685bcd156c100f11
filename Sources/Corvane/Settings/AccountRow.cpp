#include "Settings/AccountRow.h"

#include "Engines/EngineSpec.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int noteLength = 200;

/// There are four kinds of accounts, by how they connect.
enum class Voice { Pairing, Browser, Password, Token };

Voice voice(Channel channel)
{
    switch (channel) {
    case Channel::WhatsApp:
        return Voice::Pairing;
    case Channel::LinkedIn:
    case Channel::Instagram:
    case Channel::Messenger:
        return Voice::Browser;
    case Channel::Email:
        return Voice::Password;
    case Channel::Telegram:
    case Channel::Discord:
    case Channel::Slack:
    case Channel::Sms:
    case Channel::IMessage:
        return Voice::Token;
    }
    Q_UNREACHABLE();
}

QString connectedText(Voice voice, const QString& userName)
{
    const QString connected = u"Connected"_s;
    return voice == Voice::Browser && !userName.isEmpty() ? connected + u" · "_s + userName : connected;
}

QString loggedOutText(Voice voice, const QString& channel)
{
    switch (voice) {
    case Voice::Pairing:
        return u"Logged out — unlink & relink"_s;
    case Voice::Browser:
        return u"Log in to %1 in the Chrome window"_s.arg(channel);
    case Voice::Password:
        return u"Sign-in failed — check the app password"_s;
    case Voice::Token:
        return u"Invalid token"_s;
    }
    Q_UNREACHABLE();
}

QString errorText(Voice voice)
{
    if (voice == Voice::Browser)
        return u"Error — see logs"_s;
    return voice == Voice::Password ? u"Sign-in failed — check the app password"_s : u"Error"_s;
}

QString stoppedText(Voice voice, bool paused)
{
    return paused && (voice == Voice::Pairing || voice == Voice::Browser) ? u"Paused · engine stopped (frees RAM)"_s
                                                                          : u"Stopped"_s;
}

QString statusText(Voice voice, const AccountRow& row, const RuntimeState& state, bool paused)
{
    const bool browser = voice == Voice::Browser;
    switch (state.status) {
    case WAStatus::Connected:
        return connectedText(voice, state.userName.value_or(QString()));
    case WAStatus::NeedsQR:
        return browser ? u"Connecting…"_s : u"Scan QR to link"_s;
    case WAStatus::Starting:
        return browser ? u"Opening Chrome…"_s : u"Starting"_s;
    case WAStatus::Connecting:
        return browser ? u"Opening Chrome…"_s : u"Connecting…"_s;
    case WAStatus::LoggedOut:
        return loggedOutText(voice, row.channelLabel);
    case WAStatus::Error:
        return errorText(voice);
    case WAStatus::Stopped:
        return stoppedText(voice, paused);
    }
    Q_UNREACHABLE();
}

QString kindOf(Voice voice, WAStatus status)
{
    switch (status) {
    case WAStatus::Connected:
        return u"good"_s;
    case WAStatus::Starting:
    case WAStatus::Connecting:
        return u"busy"_s;
    case WAStatus::NeedsQR:
        return voice == Voice::Browser ? u"busy"_s : u"warn"_s;
    case WAStatus::LoggedOut:
        return voice == Voice::Pairing || voice == Voice::Browser ? u"warn"_s : u"bad"_s;
    case WAStatus::Error:
        return u"bad"_s;
    case WAStatus::Stopped:
        return u"idle"_s;
    }
    Q_UNREACHABLE();
}

QString detailText(Voice voice, const RuntimeState& state)
{
    if (voice != Voice::Pairing)
        return {};
    if (state.status == WAStatus::Connected)
        return state.userName.value_or(QString());
    return state.status == WAStatus::Error ? state.lastLog : QString();
}

/// What the row does not show yet: why the engine exited, and its last line.
QString noteText(const QString& detail, const RuntimeState& state)
{
    QStringList parts;
    for (const QString& part : { state.lastExit, singleLine(firstCharacters(state.lastLog, noteLength)) }) {
        if (!part.isEmpty() && part != detail)
            parts.append(part);
    }
    return parts.join(u" · "_s);
}

AccountAction action(const char* id, const QString& label, const QString& confirmation = {})
{
    return { QString::fromLatin1(id), label, confirmation, !confirmation.isEmpty(), false, false };
}

bool startsAtBoot(const Account& account)
{
    return account.startAtBoot.value_or(false);
}

/// Dropping an existing link or session needs confirmation; without one there is nothing to lose.
QString resetQuestion(WAStatus status, const QString& question)
{
    return status == WAStatus::LoggedOut || status == WAStatus::NeedsQR ? QString() : question;
}

QList<AccountAction> actionsOf(Voice voice, const Account& account, WAStatus status)
{
    QList<AccountAction> actions;
    const bool edits = keepsSecret(account.channel());
    const AccountAction edit = action("edit", u"Edit account"_s);
    if (edits && status == WAStatus::LoggedOut)
        actions.append(edit);
    const bool down = status == WAStatus::Stopped || status == WAStatus::Error || status == WAStatus::LoggedOut;
    if (voice == Voice::Pairing && status == WAStatus::NeedsQR)
        actions.append(action("pair", u"Scan QR to link"_s));
    if (account.channel() == Channel::LinkedIn && status == WAStatus::Connected)
        actions.append(action("sync", u"Sync now"_s));
    if (down)
        actions.append(action("start", account.paused.value_or(false) ? u"Resume"_s : u"Start"_s));
    else
        actions.append(action("pause", u"Pause (free RAM)"_s));
    if (edits && status != WAStatus::LoggedOut)
        actions.append(edit);
    if (voice == Voice::Pairing)
        actions.append(action("resetPairing", u"Re-pair (reset QR)"_s,
            resetQuestion(status, u"Unlink %1 and pair it again?"_s.arg(account.name))));
    if (voice == Voice::Browser)
        actions.append(action("resetSession", u"Re-login (reset session)"_s,
            resetQuestion(status, u"Forget the session of %1 and log in again?"_s.arg(account.name))));
    if (voice != Voice::Pairing) {
        AccountAction boot = action("startAtBoot", u"Start with Corvane"_s);
        boot.checkable = true;
        boot.checked = startsAtBoot(account);
        actions.append(boot);
    }
    actions.append(
        action("remove", u"Remove"_s, u"Remove %1? Its conversations stay in the inbox."_s.arg(account.name)));
    return actions;
}

QString sentenceOf(const AccountRow& row)
{
    QStringList parts { row.name, row.channelLabel, row.status };
    if (!row.detail.isEmpty())
        parts.append(row.detail);
    parts.append(row.lastMessage);
    if (!row.note.isEmpty())
        parts.append(row.note);
    return parts.join(u", "_s);
}

}

AccountAction AccountRow::first() const
{
    const auto found = std::ranges::find_if(
        actions, [](const AccountAction& action) { return !action.destructive && !action.checkable; });
    return found == actions.end() ? AccountAction() : *found;
}

QList<AccountAction> AccountRow::others() const
{
    QList<AccountAction> rest = actions;
    rest.removeOne(first());
    return rest;
}

AccountRow accountRow(const Account& account, const RuntimeState& state, const QString& lastMessageTime)
{
    const Voice speaks = voice(account.channel());
    AccountRow row;
    row.accountId = account.id.toString(QUuid::WithoutBraces);
    row.name = account.name;
    row.channel = channelRaw(account.channel());
    row.channelLabel = channelLabel(row.channel);
    row.status = statusText(speaks, row, state, account.paused.value_or(false));
    row.detail = detailText(speaks, state);
    row.note = noteText(row.detail, state);
    row.kind = kindOf(speaks, state.status);
    row.lastMessage = lastMessageTime.isEmpty() ? u"No messages yet"_s : u"Last message "_s + lastMessageTime;
    if (startsAtBoot(account))
        row.lastMessage += u" · Starts with Corvane"_s;
    row.actions = actionsOf(speaks, account, state.status);
    row.sentence = sentenceOf(row);
    return row;
}

}
