#pragma once

#include "BareStatement.h"

#include "AI/AIServices.h"
#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Platform/SystemLanguageModel.h"
#include "Platform/ToolRunner.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"
#include "Support/FakeDesktop.h"
#include "Support/Places.h"
#include "Support/VirtualScheduler.h"
#include "Work/WorkServices.h"

#include <QTemporaryDir>

namespace corvane::bench {

/// What the screens over the work records use, with an empty database, and a second connection to it through the C
/// interface alone.
class WorkBench {
public:
    WorkBench() { sqlite3_open(m_db.path().toUtf8().constData(), &m_bare); }
    ~WorkBench() { sqlite3_close(m_bare); }
    WorkBench(const WorkBench&) = delete;
    WorkBench& operator=(const WorkBench&) = delete;

    sqlite3* bare() { return m_bare; }
    VirtualScheduler& clock() { return m_clock; }

protected:
    void insert(const QString& sql, int count, const std::function<QList<SqlValue>(int at)>& values)
    {
        m_db.exec(u"BEGIN;"_s);
        for (int at = 0; at < count; ++at)
            m_db.run(sql, values(at));
        m_db.exec(u"COMMIT;"_s);
    }

    static QString time(int at) { return isoTime(1'763'000'000'000 + at * 1000LL); } ///< a second apart

    WorkServices services()
    {
        return { m_db, m_clock, m_ai.ai, m_centre, { m_clock, m_defaults, m_desktop, m_folder.path(), {} } };
    }

    QTemporaryDir m_folder;
    VirtualScheduler m_clock;
    UserDefaults m_defaults { m_folder.filePath(u"defaults.ini"_s) };
    NotificationCentre m_centre;
    LocalDB m_db { m_folder.filePath(u"work.db"_s), { QStringLiteral(CORVANE_SOURCE), m_folder.path() }, m_clock,
        m_defaults, m_centre };
    const std::unique_ptr<MachineFacts> m_machine = makeMachineFacts(AppPaths::fromEnvironment());
    const std::unique_ptr<ToolRunner> m_tools = makeToolRunner();
    const std::unique_ptr<SystemLanguageModel> m_model = makeLanguageModel(m_clock);
    AIServices m_ai { *m_model, *m_machine, *m_tools, {}, m_clock };
    FakeDesktop m_desktop;

private:
    sqlite3* m_bare = nullptr;
};

}
