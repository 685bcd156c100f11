#include "Inbox/List/BulkSelection.h"

#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

BulkSelection::BulkSelection(QObject* parent)
    : QObject(parent)
{
}

QString BulkSelection::text() const
{
    return m_ids.isEmpty() ? QString() : u"%1 selected"_s.arg(m_ids.size());
}

void BulkSelection::setListed(const QStringList& contactIds, const QString& openId)
{
    m_listed = contactIds;
    m_openId = openId;
    if (active())
        assign(m_ids);
}

void BulkSelection::set(const QString& contactId, bool checked)
{
    QStringList ids = m_ids;
    ids.removeAll(contactId);
    if (checked)
        ids.append(contactId);
    m_anchor = contactId;
    assign(ids);
}

void BulkSelection::add(const QString& contactId)
{
    if (!active() && !m_openId.isEmpty() && m_openId != contactId)
        set(m_openId, true);
    toggle(contactId);
}

void BulkSelection::extendTo(const QString& contactId)
{
    const qsizetype from = std::max<qsizetype>(0, m_listed.indexOf(active() ? m_anchor : m_openId));
    const qsizetype to = m_listed.indexOf(contactId);
    if (to < 0)
        return;
    assign(m_ids + m_listed.sliced(std::min(from, to), std::abs(to - from) + 1));
}

void BulkSelection::all()
{
    assign(m_listed);
}

void BulkSelection::clear()
{
    m_anchor.clear();
    assign({});
}

void BulkSelection::assign(const QStringList& contactIds)
{
    QStringList ids;
    std::ranges::copy_if(m_listed, std::back_inserter(ids), [&](const QString& id) { return contactIds.contains(id); });
    if (ids == m_ids)
        return;
    m_ids = ids;
    Q_EMIT changed();
}

}
