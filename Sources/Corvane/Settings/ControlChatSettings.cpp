#include "Settings/ControlChatSettings.h"

#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int mostChats = 10'000;
constexpr int mostShown = 100; // search finds the others

QString detailOf(const ApprovalControlChat& chat)
{
    return chat.accountId.isEmpty() ? channelLabel(chat.channel)
                                    : u"%1 · %2"_s.arg(channelLabel(chat.channel), chat.accountId);
}

}

ControlChatSettings::ControlChatSettings(LocalDB& db, QObject* parent)
    : QObject(parent)
    , m_db(db)
{
}

QString ControlChatSettings::stateText() const
{
    if (!chosen())
        return {};
    const auto chat = std::ranges::find(m_chats, m_chosenId, &ApprovalControlChat::id);
    return u"Approvals can be approved from %1 — commands: approve <id>, deny <id> [reason]"_s.arg(
        chat == m_chats.end() ? m_chosenId : chat->title);
}

QString ControlChatSettings::emptyText() const
{
    return m_chats.isEmpty() ? u"No conversations in the local mirror yet."_s
                             : u"No conversation matches “%1”."_s.arg(m_query.trimmed());
}

void ControlChatSettings::setQuery(const QString& query)
{
    if (query == m_query)
        return;
    m_query = query;
    filter();
}

void ControlChatSettings::choose(const QString& id)
{
    if (std::ranges::any_of(m_chats, [&](const ApprovalControlChat& chat) { return chat.id == id; }))
        save(id, u"Control chat set"_s);
}

void ControlChatSettings::turnOff()
{
    save({}, u"Control chat removed"_s);
}

void ControlChatSettings::save(const QString& id, const QString& saved)
{
    m_failed = !setApprovalsControlChatId(m_db, id);
    m_savedText = m_failed ? u"Couldn't save it, try again."_s : saved;
    m_chosenId = approvalsControlChatId(m_db);
    filter();
}

void ControlChatSettings::refresh()
{
    m_chats = fetchApprovalControlChats(m_db, mostChats);
    m_chosenId = approvalsControlChatId(m_db);
    m_savedText.clear();
    m_failed = false;
    filter();
}

void ControlChatSettings::filter()
{
    const QString wanted = folded(m_query.trimmed());
    QList<ControlChatRow> rows;
    for (const ApprovalControlChat& chat : std::as_const(m_chats)) {
        if (!folded(chat.title).contains(wanted))
            continue;
        const QString detail = detailOf(chat);
        const bool isChosen = chat.id == m_chosenId;
        rows.append({ chat.id, chat.title, chat.channel, detail, isChosen, u"%1, %2"_s.arg(chat.title, detail) });
        if (rows.size() == mostShown)
            break;
    }
    m_rows.assign(rows);
    Q_EMIT changed();
}

}
