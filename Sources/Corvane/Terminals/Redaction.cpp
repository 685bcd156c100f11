#include "Terminals/Redaction.h"

#include "Foundation/Literals.h"

#include <QRegularExpression>

namespace corvane {

namespace {

struct Rule {
    QRegularExpression pattern;
    QString replacement;
};

const std::array<Rule, 4>& rules()
{
    static const std::array<Rule, 4> rules { {
        // First, since the next one would take only the first word of a quoted value.
        { QRegularExpression(
              uR"re((?i)\b([A-Z0-9_]*(?:KEY|TOKEN|SECRET|PASS)[A-Z0-9_]*)=(?:"[^"\n]*"|'[^'\n]*'|[^'"\s]+))re"_s),
            uR"(\1=[redacted])"_s },
        { QRegularExpression(
              uR"re((?i)\b(api[_-]?key|secret|token|password|passwd|pwd)\b\s*[:=]\s*['"]?[^'"\s]{6,})re"_s),
            uR"(\1=[redacted])"_s },
        { QRegularExpression(uR"((?i)(authorization:\s*bearer\s+)[A-Za-z0-9._~+/=-]+)"_s), uR"(\1[redacted])"_s },
        { QRegularExpression(uR"((?i)\b(sk-[A-Za-z0-9_-]{16,})\b)"_s), u"[redacted-api-key]"_s },
    } };
    return rules;
}

}

QString redactSensitive(QString text)
{
    for (const Rule& rule : rules())
        text.replace(rule.pattern, rule.replacement);
    return text.trimmed();
}

}
