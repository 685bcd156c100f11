#include "Work/WorkHeader.h"

namespace corvane {

WorkHeader::WorkHeader(LocalDB& db, const WorkConsoleConfig& config, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_config(config)
{
}

void WorkHeader::read(const WorkContext& context)
{
    m_context = context;
    m_counts = countWork(m_db, m_config.module, context ? WorkContextId(context->id) : WorkContextId());
}

QString WorkHeader::title() const
{
    return m_context ? shownLine(m_context->title) : m_config.selectedTitle;
}

QString WorkHeader::subtitle() const
{
    return m_context ? shownLine(m_context->subtitle) : m_config.selectedSubtitle;
}

}
