#include "Approvals/RiskQuestion.h"

#include "Foundation/Literals.h"

#include <QRegularExpression>

namespace corvane {

namespace {

const QString money = u"money"_s;

QRegularExpression pattern(const QString& text)
{
    return QRegularExpression(text, QRegularExpression::UseUnicodePropertiesOption);
}

/// "1.234,50", "1 234.50", "12"
const QString number = uR"(\d{1,3}(?:[.,'’ \x{a0}\x{202f}]\d{3})+(?:[.,]\d{1,2})?|\d+(?:[.,]\d+)?)"_s;
const QString sign = uR"([€$£¥₹]|EUR|USD|GBP|CHF|JPY|CAD|AUD|SEK|NOK|DKK|PLN|CZK)"_s;
const QString scale = uR"((?:\s?(?:[kKmM]|thousand|million)\b)?)"_s;

/// A capitalised name, including the small words between its parts; weekdays do not count.
const QString word = uR"((?:\p{Lu}\. )*\p{Lu}[\p{L}\d&'’-]*)"_s;
const QString name
    = uR"((?!(?:Mon|Tues|Wednes|Thurs|Fri|Satur|Sun)day\b)%1(?: (?:(?:de|del|la|di|da|of|and|the|y|e|von|van|der|&) )*%1)*)"_s
          .arg(word);
const QString address = uR"([\w.+-]+@[\w-]+\.[\w.-]*\w)"_s;

QStringList amountsIn(const QString& text)
{
    static const QRegularExpression amount = pattern(
        uR"((?<![\p{L}\d.,])(?:(?:%2)\s?(?:%1)%3|(?:%1)%3\s?(?:%2|euros?|dollars?|pounds?|francs?)(?![\p{L}\d])))"_s
            .arg(number, sign, scale));
    QStringList found;
    for (auto match = amount.globalMatch(text); match.hasNext();)
        found.append(match.next().captured().simplified());
    found.removeDuplicates();
    return found;
}

QString accountIn(const QString& text)
{
    static const QRegularExpression iban = pattern(uR"(\b[A-Z]{2}\d{2}(?: ?[A-Z0-9]{4}){2,7}(?: ?[A-Z0-9]{1,4})?\b)"_s);
    return iban.match(text).captured();
}

QString recipientIn(const QString& text)
{
    static const QRegularExpression named
        = pattern(uR"((?i:\b(?:to|pay|payee|recipient|beneficiary))\b:? +(%1|%2))"_s.arg(address, name));
    const QString found = named.match(text).captured(1);
    const QString account = accountIn(text);
    if (found.isEmpty() || account.startsWith(found))
        return account;
    return account.isEmpty() ? found : u"%1 (%2)"_s.arg(found, account);
}

/// "412.80 EUR and 3 EUR to Arcillas del Sur", as far as the decision names them.
QString namedIn(const WorkDecisionRecord& decision)
{
    const PaymentFacts facts = paymentFacts(decision.title + u'\n' + decision.proposal);
    QStringList parts;
    if (!facts.amounts.isEmpty())
        parts.append(facts.amounts.join(u" and "_s));
    if (!facts.recipient.isEmpty())
        parts.append(u"to "_s + facts.recipient);
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
        return named.isEmpty() ? u"Approve this payment?"_s : u"Approve this payment: %1?"_s.arg(named);
    const QString asked = u"Approve this? It is marked as %1 risk."_s.arg(decision.risk.trimmed());
    return named.isEmpty() ? asked : u"%1 It names %2."_s.arg(asked, named);
}

}
