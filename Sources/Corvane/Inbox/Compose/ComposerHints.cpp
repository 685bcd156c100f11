#include "Inbox/Compose/ComposerHints.h"

#include "Foundation/Literals.h"
#include "Inbox/Compose/ReplyRouting.h"
#include "Presentation/SendKeys.h"

namespace corvane {

ComposerHints::ComposerHints(const ReplyRouting& routing, const UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_routing(routing)
    , m_defaults(defaults)
{
    connect(&m_routing, &ReplyRouting::changed, this, &ComposerHints::changed);
}

QString ComposerHints::placeholder() const
{
    const QString channel = m_routing.label();
    return channel.isEmpty() ? QString() : u"Reply on %1 · %2 sends"_s.arg(channel, sendKeys());
}

bool ComposerHints::returnSends() const
{
    return corvane::returnSends(m_defaults);
}

QString ComposerHints::sendKeys() const
{
    return corvane::sendKeys(m_defaults);
}

}
