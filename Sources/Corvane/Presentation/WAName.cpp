#include "Presentation/WAName.h"

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

/// A mail address, and whatever else holds an "@", is a name that a person can read.
bool isNetworkAddress(const QString& text)
{
    static const QRegularExpression domain(
        QStringLiteral("@(s\\.whatsapp\\.net|c\\.us|g\\.us|lid|hosted|hosted\\.lid|newsletter|broadcast|bot|call)$"));
    return text.contains(domain);
}

}

QString pretty(const QString& name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || trimmed == QStringLiteral("Unknown"))
        return QStringLiteral("Unknown");
    if (!isNetworkAddress(trimmed))
        return trimmed;
    const qsizetype at = trimmed.indexOf(u'@');
    const QString user = trimmed.first(at);
    const QString domain = trimmed.sliced(at + 1);
    const QString tail = user.right(4);
    if (domain == QStringLiteral("newsletter"))
        return withTail(QStringLiteral("Channel"), tail);
    if (domain == QStringLiteral("broadcast"))
        return withTail(QStringLiteral("Broadcast"), tail);
    if (domain == QStringLiteral("g.us"))
        return withTail(QStringLiteral("Group chat"), tail);
    if (domain == QStringLiteral("s.whatsapp.net") || domain == QStringLiteral("c.us")) {
        const QString digits = user.section(u':', 0, 0); // the number of a device follows
        return isAllDigits(digits) ? u'+' + digits : withTail(QStringLiteral("WhatsApp user"), tail);
    }
    return withTail(QStringLiteral("WhatsApp user"), tail);
}

}
