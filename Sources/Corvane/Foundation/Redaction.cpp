#include "Foundation/Redaction.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QUrl>
#include <algorithm>

namespace corvane {

namespace {

struct Rule {
    QRegularExpression pattern;
    QString replacement;
};

const QString mask = u"[redacted]"_s;
constexpr qsizetype shortestKnown = 4;

const QList<Rule>& rules()
{
    static const auto rule = [](const QString& pattern, const QString& replacement) {
        return Rule { QRegularExpression(u"(?i)"_s + pattern), replacement };
    };
    static const QString word = u"key|token|secret|pass|pwd|auth|sig|session|sid|jwt|otp|ticket|credential|cookie"_s;
    // The rest of a header, or the value of it that a quotation holds.
    static const QString value = uR"((?!\[redacted\](?:[\r\n"'\\]|\z))(?:[^\r\n"'\\]|"[^"\r\n]*"|'[^'\r\n]*')+)"_s;
    // The order matters: a broad rule must not remove what a later one matches.
    static const QList<Rule> rules {
        // URLs: user information, and parameters by their names.
        rule(uR"(\b([a-z][a-z0-9+.-]*://)[^\s/?#"'<>\\]*@)"_s, uR"(\1[redacted]@)"_s),
        rule(uR"(([?&#;](?:[^=&#\s"'<>]*(?:%1)[^=&#\s"'<>]*|code)=)[^&#\s"<>]+)"_s.arg(word), uR"(\1[redacted])"_s),
        // JSON, and JSON within a string of JSON.
        rule(uR"re((\\["'][\w.-]*(?:%1)[\w.-]*\\["']\s*:\s*\\(["']))(?:\\\\(?:\\.|.)|(?!\\\2).)*)re"_s.arg(word),
            uR"(\1[redacted])"_s),
        rule(uR"re((["'][\w.-]*(?:%1)[\w.-]*["']\s*:\s*(["']))(?:\\.|(?!\2)[^\\])*)re"_s.arg(word),
            uR"(\1[redacted])"_s),
        // Shells and settings.
        rule(
            uR"re(\b([A-Z0-9_]*(?:KEY|TOKEN|SECRET|PASS)[A-Z0-9_]*)=(?!\[redacted\])(?:"[^"\n]*"|'[^'\n]*'|[^'"\s]+))re"_s,
            uR"(\1=[redacted])"_s),
        rule(uR"re(\b(api[_-]?key|secret|token|password|passwd|pwd)\b\s*[:=]\s*(?!\[redacted\])['"]?[^'"\s]{6,})re"_s,
            uR"(\1=[redacted])"_s),
        rule(uR"(\beyJ[A-Za-z0-9_-]{5,}\.[A-Za-z0-9_-]{5,}(?:\.[A-Za-z0-9_-]*)*)"_s, u"[redacted-token]"_s),
        rule(uR"(\b(sk-[A-Za-z0-9_-]{16,})\b)"_s, u"[redacted-api-key]"_s),
        // Headers. What stands before the value is atomic, so that a masked value is not matched from elsewhere.
        rule(uR"((authorization\b\\?["']?\s*[:=]\s*\\?["']?\s*bearer\s+)[A-Za-z0-9._~+/=-]+)"_s, uR"(\1[redacted])"_s),
        rule(
            uR"((\b(?>authorization\b\\?["']?\s*[:=]\s*\\?["']?(?:(?:basic|digest|negotiate|ntlm|token|apikey) +)?))(?!\s*bearer\b))"_s
                + value,
            uR"(\1[redacted])"_s),
        rule(uR"((\b(?>(?:set-)?cookie\b\\?["']?\s*[:=]\s*\\?["']?)))"_s + value, uR"(\1[redacted])"_s),
    };
    return rules;
}

/// The ways in which a text is written inside an address or inside JSON.
QStringList spellings(const QString& value)
{
    const QString json = QString::fromUtf8(QJsonDocument(QJsonArray { value }).toJson(QJsonDocument::Compact));
    QStringList all { value, QString::fromLatin1(QUrl::toPercentEncoding(value)),
        QString::fromLatin1(QUrl::toPercentEncoding(value)).replace(u"%20"_s, u"+"_s), json.sliced(2).chopped(2) };
    all.removeDuplicates();
    return all;
}

}

QString redactSensitive(QString text)
{
    for (const Rule& rule : rules())
        text.replace(rule.pattern, rule.replacement);
    return text.trimmed();
}

QString redactSensitive(QString text, const QStringList& known)
{
    QStringList longestFirst;
    for (const QString& value : known) {
        if (value.size() >= shortestKnown)
            longestFirst += spellings(value);
    }
    std::ranges::sort(longestFirst, std::ranges::greater(), &QString::size);
    for (const QString& value : std::as_const(longestFirst))
        text.replace(value, mask);
    return redactSensitive(text);
}

}
