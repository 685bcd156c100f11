#pragma once

#include "Store/Work/WorkRecords.h"

#include <QStringList>

namespace corvane {

/// What a text says of a payment, in its own words.
struct PaymentFacts {
    QStringList amounts; ///< such as "412.80 EUR", each once
    QString recipient; ///< a name, an address or an account number; empty where none stands
};

PaymentFacts paymentFacts(const QString& text);

/// Whether a decision is asked about once more before it is approved: its risk is any word but "none" and "low".
bool isRisky(const WorkDecisionRecord& decision);

/// What it is asked, with amount and recipient where the decision names them.
QString riskQuestion(const WorkDecisionRecord& decision);

}
