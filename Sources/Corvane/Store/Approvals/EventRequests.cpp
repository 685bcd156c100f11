#include "Store/Approvals/EventRequests.h"

#include "Foundation/Literals.h"
#include "Store/Core/Transaction.h"

namespace corvane {

QString eventHash(const CalCommand& command)
{
    return fieldsHash({ u"event"_s, command.title, QString::number(command.startMs), QString::number(command.endMs),
        command.notes, command.location, command.calendar });
}

Decided approveEvent(LocalDB& db, const QString& id, const QString& seenHash)
{
    Transaction transaction(db);
    const auto command = transaction.begun() ? fetchCalendarCommand(db, id) : std::nullopt;
    if (!command || command->status != u"pending")
        return Decided::Refused;
    if (eventHash(*command) != seenHash)
        return Decided::Changed;
    const bool done = appendRecord(db, u"event"_s, id, u"approve"_s, seenHash) && transaction.commit();
    return done ? Decided::Taken : Decided::Refused;
}

Decided rejectEvent(LocalDB& db, const QString& id)
{
    Transaction transaction(db);
    const auto command = transaction.begun() ? fetchCalendarCommand(db, id) : std::nullopt;
    if (!command)
        return Decided::Refused;
    if (command->error == eventRejected)
        return Decided::AlreadySo;
    const bool done = endCalendarCommand(db, id, u"pending"_s, u"failed"_s, std::nullopt, eventRejected)
        && appendRecord(db, u"event"_s, id, u"reject"_s, eventHash(*command)) && transaction.commit();
    return done ? Decided::Taken : Decided::Refused;
}

bool isApproved(LocalDB& db, const CalCommand& command)
{
    return db
        .scalar(u"SELECT 1 FROM approval_record WHERE kind='event' AND subject_id=? AND content_hash=? "
                "AND action IN ('approve','proposed') LIMIT 1;"_s,
            { command.id, eventHash(command) })
        .has_value();
}

bool recordProposedEvent(LocalDB& db, const QString& id)
{
    const auto command = fetchCalendarCommand(db, id);
    return command && appendRecord(db, u"event"_s, id, u"proposed"_s, eventHash(*command));
}

}
