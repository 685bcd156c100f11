#include "CRM/ContactPick.h"

#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Foundation/WAName.h"

namespace corvane {

namespace {

constexpr int peopleShown = 30;

}

ContactPick::ContactPick(LocalDB& db, Link link, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_link(std::move(link))
{
}

void ContactPick::setQuery(const QString& query)
{
    if (query == m_query)
        return;
    m_query = query;
    search();
}

void ContactPick::begin(const QString& subject)
{
    m_subject = subject;
    m_contacts = fetchContactLinks(m_db); // once, to keep up with typing
    m_query.clear();
    m_errorText.clear();
    search();
}

void ContactPick::choose(const QString& contactId)
{
    if (m_subject.isEmpty())
        return;
    if (m_link(m_subject, contactId))
        return cancel();
    m_errorText = u"Couldn't link it, try again."_s;
    Q_EMIT changed();
}

void ContactPick::cancel()
{
    m_subject.clear();
    m_contacts.clear();
    m_people.clear();
    Q_EMIT changed();
}

void ContactPick::search()
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
