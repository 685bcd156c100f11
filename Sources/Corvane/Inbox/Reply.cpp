#include "Inbox/Reply.h"

#include "Engines/EngineManager.h"

namespace corvane {

Reply::Reply(const Composer::Surroundings& at, AIServices& ai, QObject* parent)
    : QObject(parent)
    , m_composer(at)
    , m_assistant({ at.engine.db(), ai, m_composer })
    , m_summary(at.engine.db(), ai)
    , m_askLumo(at.engine.db(), ai)
{
}

void Reply::open(const ContactRow& contact)
{
    m_composer.open(contact);
    m_assistant.open(contact);
    m_summary.open(contact);
    m_askLumo.open(contact);
}

}
