#include "Approvals/ProposalLink.h"

#include "Approvals/ApprovalsStore.h"
#include "Foundation/Channel.h"
#include "Foundation/Text.h"
#include "Presentation/WAName.h"

namespace corvane {

namespace {

constexpr int peopleShown = 30;

}

ProposalLink::ProposalLink(ApprovalsStore& store, LocalDB& db, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_db(db)
{
}

void ProposalLink::setQuery(const QString& query)
{
    if (query == m_query)
        return;
    m_query = query;
    search();
}

void ProposalLink::begin(const QString& proposalId)
{
    m_proposalId = proposalId;
    m_contacts = fetchContactLinks(m_db); // once, as a search must keep up with the typing
    m_query.clear();
    m_errorText.clear();
    search();
}

void ProposalLink::choose(const QString& contactId)
{
    if (m_proposalId.isEmpty())
        return;
    if (m_store.linkProposal(m_proposalId, contactId))
        return cancel();
    m_errorText = QStringLiteral("Couldn't link it, try again.");
    Q_EMIT changed();
}

void ProposalLink::cancel()
{
    m_proposalId.clear();
    m_contacts.clear();
    m_people.clear();
    Q_EMIT changed();
}

void ProposalLink::search()
{
    const QString wanted = folded(m_query.trimmed());
    m_people.clear();
    for (const ContactLink& contact : std::as_const(m_contacts)) {
        if (m_people.size() == peopleShown)
            break;
        if (!folded(contact.name).contains(wanted) && !folded(contact.id).contains(wanted))
            continue;
        m_people.append({ contact.id, WAName::pretty(contact.name), contact.channel, channelLabel(contact.channel) });
    }
    Q_EMIT changed();
}

}
