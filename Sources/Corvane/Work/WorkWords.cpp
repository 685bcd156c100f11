#include "Work/WorkWords.h"

#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <vector>

namespace corvane {

namespace {

using Signs = std::vector<QLatin1StringView>;

struct Group {
    QLatin1StringView word;
    Signs signs;
};

bool containsAny(const QString& lower, const Signs& signs)
{
    return std::ranges::any_of(signs, [&](QLatin1StringView sign) { return lower.contains(sign); });
}

/// The name of the first group with a word that the text contains.
std::optional<QString> firstHit(const std::vector<Group>& groups, const QString& text)
{
    const QString lower = text.toLower();
    const auto hit = std::ranges::find_if(groups, [&](const Group& group) { return containsAny(lower, group.signs); });
    return hit == groups.end() ? std::nullopt : std::optional(QString(hit->word));
}

bool anyOf(const QStringList& signs, const QStringList& texts)
{
    const QString lower = texts.join(u' ').toLower();
    return std::ranges::any_of(signs, [&](const QString& sign) { return lower.contains(sign); });
}

}

QStringList ticketSigns()
{
    return { u"ticket"_s, u"bug"_s, u"support"_s, u"repro"_s };
}

QStringList financeSigns()
{
    return { u"finance"_s, u"billing"_s, u"invoice"_s, u"payroll"_s, u"payment"_s };
}

bool marksFinance(const QStringList& texts)
{
    return anyOf(financeSigns(), texts);
}

bool marksHiring(const QStringList& texts)
{
    return anyOf({ u"hiring"_s, u"candidate"_s, u"recruit"_s, u"screen"_s }, texts);
}

std::optional<QString> firstSign(const QList<std::pair<QString, QString>>& signs, const QString& text)
{
    const QString lower = text.toLower();
    const auto hit = std::ranges::find_if(signs, [&](const auto& sign) { return lower.contains(sign.first); });
    return hit == signs.end() ? std::nullopt : std::optional(hit->second);
}

bool isTicketKind(const QString& kind)
{
    return anyOf(ticketSigns(), { kind });
}

std::optional<QString> riskForCreate(const QString& kind, const QString& title, const QString& summary)
{
    // The blank in "pay " keeps "payroll" out; the blanks of the join let a title end in "pay".
    return firstHit({ { "money"_L1, { "invoice"_L1, "billing"_L1, "payment"_L1, "pay "_L1, "money"_L1, "vendor"_L1 } },
                        { "external"_L1, { "send"_L1, "reply"_L1, "client update"_L1, "outreach"_L1, "message"_L1 } },
                        { "credential"_L1, { "credential"_L1, "secret"_L1, "token"_L1, "api key"_L1 } },
                        { "high"_L1, { "delete"_L1, "remove"_L1, "deploy"_L1, "destructive"_L1 } } },
        QStringList { kind, title, summary }.join(u' '));
}

QString inferredKind(const QString& title)
{
    return firstHit(
        { { "bug"_L1, { "bug"_L1, "repro"_L1 } }, { "handoff"_L1, { "handoff"_L1 } },
            { "screen"_L1, { "screen"_L1, "candidate"_L1 } }, { "finance"_L1, { "invoice"_L1, "finance"_L1 } },
            { "reply"_L1, { "reply"_L1 } }, { "research"_L1, { "research"_L1 } } },
        title)
        .value_or(u"task"_s);
}

bool meansThisMachine(const QString& host)
{
    static constexpr std::array words { ""_L1, "mac"_L1, "local"_L1, "localhost"_L1 };
    return std::ranges::find(words, host.trimmed().toLower()) != words.end();
}

QString hostWords(const QString& host)
{
    return meansThisMachine(host) ? machineWords::thisMachine : host;
}

QString normalizedLocalSlug(const QString& text, qint64 nowMs)
{
    QString slug;
    for (const char32_t letter : text.toLower().normalized(QString::NormalizationForm_C).toUcs4()) {
        if (QChar::isLetter(letter) || QChar::isDigit(letter))
            slug += QString::fromUcs4(&letter, 1);
        else if (!slug.isEmpty() && !slug.endsWith(u'-'))
            slug += u'-';
    }
    if (slug.endsWith(u'-'))
        slug.chop(1);
    return slug.isEmpty() ? u"context-%1"_s.arg(nowMs / 1000) : slug;
}

}
