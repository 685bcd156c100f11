#pragma once

#include "Store/Work/WorkRecords.h"

#include <QStringList>

namespace corvane {

/// The payment that a text mentions.
struct PaymentFacts {
    QStringList amounts; ///< such as "412.80 EUR", without duplicates
    QString recipient; ///< a name, an address or an account number; empty if there is none
};

PaymentFacts paymentFacts(const QString& text);

/// Whether a decision must be confirmed before it is approved: its risk is anything but "none" and "low".
bool isRisky(const WorkDecisionRecord& decision);

/// The question, with amount and recipient if the decision names them.
QString riskQuestion(const WorkDecisionRecord& decision);

}
