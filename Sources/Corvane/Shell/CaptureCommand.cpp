#include "Shell/CaptureCommand.h"

#include "Desk/QuickCapture.h"
#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/PrivateFile.h"
#include "Store/Core/LocalDB.h"

#include <QFileInfo>
#include <QTextStream>

namespace corvane {

int captureWords(const AppPaths& paths, const QStringList& arguments, QTextStream& errors)
{
    const QString noteOption = u"--note"_s;
    QStringList words = arguments;
    const bool isNote = words.removeAll(noteOption) > 0;
    keepFilesPrivate({ paths.applicationSupport, QFileInfo(paths.defaultsFile).path() });
    SystemScheduler scheduler;
    UserDefaults defaults(paths.defaultsFile);
    NotificationCentre notifications;
    LocalDB db(paths.database(), { paths.resources, paths.home }, scheduler, defaults, notifications);
    const QString kind = isNote ? u"note"_s : u"task"_s;
    if (saveCapture(db, kind, words.join(u' ')))
        return 0;
    errors << (words.join(u' ').trimmed().isEmpty()
            ? "There is nothing to capture.\n"
            : "The database could not be written. Is the program's data folder writable?\n");
    return 1;
}

}
