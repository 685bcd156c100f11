#pragma once

#include "CRM/MergeSuggestions.h"
#include "CRM/PaneRow.h"
#include "Store/People/ContactInfo.h"
#include "Store/People/CrmRecords.h"
#include "Store/People/IdentityQueries.h"

namespace corvane {

class DateWords;

// The rows of the contact pane's sections.
PaneRow suggestionRow(const MergeCandidate& pair, const QString& contactId); ///< the other one of the pair
PaneRow mergeRow(const LiveMerge& merge, const QString& mergedName);
PaneRow memoryRow(const MemoryEntry& entry);
QList<PaneRow> infoRows(const ContactInfoRow& info);
PaneRow dealRow(const CRMDealRow& deal);
PaneRow noteRow(const NoteRow& note, const DateWords& words);
PaneRow activityRow(const ActivityRow& activity, const DateWords& words);
PaneRow taskRow(const CRMTaskRow& task);

}
