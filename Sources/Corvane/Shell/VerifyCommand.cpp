#include "Shell/VerifyCommand.h"

#include "Foundation/Literals.h"
#include "Store/Approvals/ApprovalRecords.h"

#include <QFileInfo>
#include <QTextStream>

namespace corvane {

int verifyDecisions(const AppPaths& paths, QTextStream& out)
{
    const QString path = paths.database();
    if (!QFileInfo::exists(path)) {
        out << "There is no database at " << path << ".\n";
        return 1;
    }
    const auto db = SqlConnection::reader(path, std::make_shared<std::atomic<bool>>(false));
    const RecordCheck check
        = db->isOpen() ? checkRecords(*db) : RecordCheck { false, u"The database can't be opened."_s };
    out << check.words << '\n';
    return check.sound ? 0 : 1;
}

}
