#include "CRM/PaneSection.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype olderRows = 25;

}

PaneSection::PaneSection(const QString& emptyText, qsizetype firstRows, QObject* parent)
    : QObject(parent)
    , m_emptyText(emptyText)
    , m_firstRows(firstRows)
    , m_limit(firstRows)
{
}

bool PaneSection::shows(const QString& id) const
{
    return std::ranges::find(m_rows.rows(), id, &PaneRow::id) != m_rows.rows().end();
}

void PaneSection::assign(const QList<PaneRow>& rows)
{
    const bool hasOlder = m_limit != unlimited && rows.size() > m_limit;
    m_rows.assign(hasOlder ? rows.first(m_limit) : rows);
    if (std::exchange(m_hasOlder, hasOlder) != hasOlder)
        Q_EMIT hasOlderChanged();
}

void PaneSection::showOlder()
{
    m_limit += olderRows;
    Q_EMIT olderAsked();
}

}
