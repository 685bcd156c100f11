#pragma once

#include "Foundation/Literals.h"
#include "Store/Work/OpsRecords.h"
#include "Store/Work/WorkWrites.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeLanguageModel.h"
#include "Support/StoreTest.h"
#include "Work/WorkServices.h"

namespace corvane {

/// Work services with a real database, a virtual clock and a fake assistant.
class WorkTest : public StoreTest {
protected:
    WorkContextRow context(const QString& title, const QString& module = u"ops"_s)
    {
        return *upsertWorkContext(*m_db, { module, u"workspace"_s, title.toLower().replace(' ', '-'), title, {}, {} });
    }

    QString item(const std::optional<QString>& context, const QString& title, const QString& status = u"open"_s,
        const QString& kind = u"task"_s, const QString& module = u"ops"_s)
    {
        const QString id
            = insertWorkItem(*m_db, { module, context, kind, title, u"normal"_s, u"Ana"_s, u"ui"_s, {} })->id;
        updateWorkItemStatus(*m_db, id, status);
        return id;
    }

    QStringList messages() { return table("SELECT kind, body FROM work_message ORDER BY rowid;"); }

    LocalDB& db = open();
    FakeLumo lumo;
    FakeDesktop desktop;
    WorkServices services { db, m_clock, lumo.ai, m_centre, { m_clock, m_defaults, desktop, m_home.paths().home, {} } };
};

}
