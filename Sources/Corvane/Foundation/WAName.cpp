#include "Foundation/WAName.h"

#include "Foundation/Literals.h"

#include <QRegularExpression>
#include <algorithm>

namespace corvane::WAName {

namespace {

QString withTail(const QString& word, const QString& tail)
{
    return tail.isEmpty() ? word : word + u' ' + tail;
}

bool isAllDigits(const QString& text)
{
    return !text.isEmpty()
        && std::ranges::all_of(text, [](QChar character) { return character >= u'0' && character <= u'9'; });
}

/// A mail address, or anything else with an "@", is a readable name.
bool isNetworkAddress(const QString& text)
{
    static const QRegularExpression domain(
        u"@(s\\.whatsapp\\.net|c\\.us|g\\.us|lid|hosted|hosted\\.lid|newsletter|broadcast|bot|call)$"_s);
    return text.contains(domain);
}

}

QString pretty(const QString& name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || trimmed == u"Unknown"_s)
        return u"Unknown"_s;
    if (!isNetworkAddress(trimmed))
        return trimmed;
    const qsizetype at = trimmed.indexOf(u'@');
    const QString user = trimmed.first(at);
    const QString domain = trimmed.sliced(at + 1);
    const QString tail = user.right(4);
    if (domain == u"newsletter"_s)
        return withTail(u"Channel"_s, tail);
    if (domain == u"broadcast"_s)
        return withTail(u"Broadcast"_s, tail);
    if (domain == u"g.us"_s)
        return withTail(u"Group chat"_s, tail);
    if (domain == u"s.whatsapp.net"_s || domain == u"c.us"_s) {
        const QString digits = user.section(u':', 0, 0); // followed by a device number
        return isAllDigits(digits) ? u'+' + digits : withTail(u"WhatsApp user"_s, tail);
    }
    return withTail(u"WhatsApp user"_s, tail);
}

}
