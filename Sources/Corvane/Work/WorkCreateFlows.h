#pragma once

#include "Foundation/Literals.h"
#include "Foundation/Result.h"
#include "Store/Work/OpsRecords.h"
#include "Work/WorkConsoleConfig.h"

namespace corvane {

// What a person begins becomes rows here, and rows alone: nothing is sent, paid or run. A failure carries the words for
// the person, and nothing of what they typed is lost by it.

enum class WorkCreateFlow { Context, Item, Note, Ask };

/// What stands in the sheet.
struct WorkDraft {
    WorkCreateFlow flow = WorkCreateFlow::Item;
    QString title = {};
    QString summary = {};
    QString kind = {}; ///< blank: the flow's own
    QString priority = u"normal"_s;
    QString owner = u"Oskel"_s;
    QString askTarget = u"LumoAI"_s;
    QString askUrgency = u"normal"_s;

    bool operator==(const WorkDraft&) const = default;
};

WorkDraft emptyDraft(WorkCreateFlow flow);

/// The draft that a quick action opens the sheet with.
WorkDraft quickActionDraft(const QString& title, const QString& subtitle, const QString& contextTitle);

/// Where new rows belong.
struct WorkPlace {
    QString module;
    WorkContext context = {};
    QString slug = {}; ///< of the project of an ask where there is no context
    QString source = u"corvane-ui"_s;

    WorkContextId contextId() const { return context ? WorkContextId(context->id) : WorkContextId(); }
};

Result<WorkContextRow> saveContext(LocalDB& db, const WorkPlace& place, const WorkDraft& draft);

/// An item with a risk brings a decision that waits for a person.
Result<WorkItemRecord> saveItem(LocalDB& db, const WorkPlace& place, const WorkDraft& draft);
Result<WorkEvidenceRecord> saveNote(LocalDB& db, const WorkPlace& place, const WorkDraft& draft);
Result<OpsAskRow> saveAsk(LocalDB& db, const WorkPlace& place, const WorkDraft& draft);
bool asksLumo(const WorkDraft& draft);

/// A line of the program's own in the thread of a context.
bool postStatus(LocalDB& db, const WorkPlace& place, const QString& body, const QString& kind = u"status"_s);

// Each says what was done in the thread of the context. False, and nothing said, where the row was not written.
bool setWorkDecisionStatus(LocalDB& db, const WorkPlace& place, const WorkDecisionRecord& seen, const QString& status);
bool setWorkMemoryStatus(LocalDB& db, const WorkPlace& place, const WorkMemoryRecord& memory, const QString& status);
bool markWorkItemDone(LocalDB& db, const WorkPlace& place, const WorkItemRecord& item);

}
