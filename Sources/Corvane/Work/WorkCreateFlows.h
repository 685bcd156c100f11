#pragma once

#include "Foundation/Literals.h"
#include "Foundation/Result.h"
#include "Store/Work/OpsRecords.h"
#include "Work/WorkConsoleConfig.h"

namespace corvane {

// Creates rows for what the user starts, and nothing else: nothing is sent, paid or executed. Errors are for the user,
// and nothing that they typed is lost.

enum class WorkCreateFlow { Context, Item, Note, Ask };

/// The content of the sheet.
struct WorkDraft {
    WorkCreateFlow flow = WorkCreateFlow::Item;
    QString title = {};
    QString summary = {};
    QString kind = {}; ///< blank: the flow's default
    QString priority = u"normal"_s;
    QString owner = u"Oskel"_s;
    QString askTarget = u"LumoAI"_s;
    QString askUrgency = u"normal"_s;

    bool operator==(const WorkDraft&) const = default;
};

WorkDraft emptyDraft(WorkCreateFlow flow);

/// The initial content of the sheet for a quick action.
WorkDraft quickActionDraft(const QString& title, const QString& subtitle, const QString& contextTitle);

/// Where new rows are added.
struct WorkPlace {
    QString module;
    WorkContext context = {};
    QString slug = {}; ///< the project of an ask if there is no context
    QString source = u"corvane-ui"_s; ///< of an item

    WorkContextId contextId() const { return context ? WorkContextId(context->id) : WorkContextId(); }
};

Result<WorkContextRow> saveContext(LocalDB& db, const WorkPlace& place, const WorkDraft& draft);

/// An item with a risk adds a decision that waits for the user.
Result<WorkItemRecord> saveItem(LocalDB& db, const WorkPlace& place, const WorkDraft& draft);
Result<WorkEvidenceRecord> saveNote(LocalDB& db, const WorkPlace& place, const WorkDraft& draft);
Result<OpsAskRow> saveAsk(LocalDB& db, const WorkPlace& place, const WorkDraft& draft);
bool asksLumo(const WorkDraft& draft);

/// A line by the program in the thread of a context.
bool postStatus(LocalDB& db, const WorkPlace& place, const QString& body, const QString& kind = u"status"_s);

// Each reports its result in the thread of the context. False, without a report, if the row was not written.
bool setWorkDecisionStatus(LocalDB& db, const WorkPlace& place, const WorkDecisionRecord& seen, const QString& status);
bool setWorkMemoryStatus(LocalDB& db, const WorkPlace& place, const WorkMemoryRecord& memory, const QString& status);
bool markWorkItemDone(LocalDB& db, const WorkPlace& place, const WorkItemRecord& item);

}
