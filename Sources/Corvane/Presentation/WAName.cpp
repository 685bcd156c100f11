#include "Presentation/WAName.h"

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

}

QString pretty(const QString& name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || trimmed == QStringLiteral("Unknown"))
        return QStringLiteral("Unknown");
    const qsizetype at = trimmed.indexOf(u'@');
    if (at < 0)
        return trimmed;
    const QString user = trimmed.first(at);
    const QString domain = trimmed.sliced(at + 1);
    const QString tail = user.right(4);
    if (domain == QStringLiteral("newsletter"))
        return withTail(QStringLiteral("Channel"), tail);
    if (domain == QStringLiteral("broadcast"))
        return withTail(QStringLiteral("Broadcast"), tail);
    if (domain == QStringLiteral("g.us"))
        return withTail(QStringLiteral("Group chat"), tail);
    if (domain == QStringLiteral("s.whatsapp.net") || domain == QStringLiteral("c.us"))
        return isAllDigits(user) ? u'+' + user : trimmed;
    return tail.isEmpty() ? trimmed : QStringLiteral("WhatsApp user ") + tail;
}

}
