#include "Approvals/RiskQuestion.h"

#include <QRegularExpression>

namespace corvane {

namespace {

const QString money = QStringLiteral("money");

QRegularExpression pattern(const QString& text)
{
    return QRegularExpression(text, QRegularExpression::UseUnicodePropertiesOption);
}

/// "1.234,50", "1 234.50", "12"
const QString number = QStringLiteral(R"(\d{1,3}(?:[.,'’ \x{a0}\x{202f}]\d{3})+(?:[.,]\d{1,2})?|\d+(?:[.,]\d+)?)");
const QString sign = QStringLiteral(R"([€$£¥₹]|EUR|USD|GBP|CHF|JPY|CAD|AUD|SEK|NOK|DKK|PLN|CZK)");
const QString scale = QStringLiteral(R"((?:\s?(?:[kKmM]|thousand|million)\b)?)");

/// A name in capitals, with the small words between its parts; a day is none.
const QString word = QStringLiteral(R"((?:\p{Lu}\. )*\p{Lu}[\p{L}\d&'’-]*)");
const QString name = QStringLiteral(
    R"((?!(?:Mon|Tues|Wednes|Thurs|Fri|Satur|Sun)day\b)%1(?: (?:(?:de|del|la|di|da|of|and|the|y|e|von|van|der|&) )*%1)*)")
                         .arg(word);
const QString address = QStringLiteral(R"([\w.+-]+@[\w-]+\.[\w.-]*\w)");

QStringList amountsIn(const QString& text)
{
    static const QRegularExpression amount = pattern(QStringLiteral(
        R"((?<![\p{L}\d.,])(?:(?:%2)\s?(?:%1)%3|(?:%1)%3\s?(?:%2|euros?|dollars?|pounds?|francs?)(?![\p{L}\d])))")
            .arg(number, sign, scale));
    QStringList found;
    for (auto match = amount.globalMatch(text); match.hasNext();)
        found.append(match.next().captured().simplified());
    found.removeDuplicates();
    return found;
}

QString accountIn(const QString& text)
{
    static const QRegularExpression iban
        = pattern(QStringLiteral(R"(\b[A-Z]{2}\d{2}(?: ?[A-Z0-9]{4}){2,7}(?: ?[A-Z0-9]{1,4})?\b)"));
    return iban.match(text).captured();
}

QString recipientIn(const QString& text)
{
    static const QRegularExpression named
        = pattern(QStringLiteral(R"((?i:\b(?:to|pay|payee|recipient|beneficiary))\b:? +(%1|%2))").arg(address, name));
    const QString found = named.match(text).captured(1);
    const QString account = accountIn(text);
    if (found.isEmpty() || account.startsWith(found))
        return account;
    return account.isEmpty() ? found : QStringLiteral("%1 (%2)").arg(found, account);
}

/// "412.80 EUR and 3 EUR to Arcillas del Sur", as far as the decision names them.
QString namedIn(const WorkDecisionRecord& decision)
{
    const PaymentFacts facts = paymentFacts(decision.title + u'\n' + decision.proposal);
    QStringList parts;
    if (!facts.amounts.isEmpty())
        parts.append(facts.amounts.join(QStringLiteral(" and ")));
    if (!facts.recipient.isEmpty())
        parts.append(QStringLiteral("to ") + facts.recipient);
    return parts.join(u' ');
}

}

PaymentFacts paymentFacts(const QString& text)
{
    return { amountsIn(text), recipientIn(text) };
}

bool isRisky(const WorkDecisionRecord& decision)
{
    const QString risk = decision.risk.trimmed().toLower();
    return !risk.isEmpty() && risk != u"none" && risk != u"low";
}

QString riskQuestion(const WorkDecisionRecord& decision)
{
    const QString named = namedIn(decision);
    if (decision.risk.trimmed().toLower() == money)
        return named.isEmpty() ? QStringLiteral("Approve this payment?")
                               : QStringLiteral("Approve this payment: %1?").arg(named);
    const QString asked = QStringLiteral("Approve this? It is marked as %1 risk.").arg(decision.risk.trimmed());
    return named.isEmpty() ? asked : QStringLiteral("%1 It names %2.").arg(asked, named);
}

}
