#include "Approvals/ApprovalCommands.h"

#include "Foundation/Literals.h"

namespace corvane {

QList<Command> approvalCommands()
{
    return at({ u"In Approvals"_s, 1 },
        {
            { u"approve"_s, u"Approve, retry or apply"_s, u"Ctrl+Return"_s },
            { u"undoApproval"_s, u"Undo within five seconds"_s, u"Ctrl+Z"_s },
            { u"editDraft"_s, u"Edit a message"_s, u"F2"_s },
            { u"reject"_s, u"Reject"_s, u"Del"_s },
            { u"wholeText"_s, u"Show all of a long text"_s, u"Space"_s },
        });
}

}
