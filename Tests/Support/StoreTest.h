#pragma once

#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Store/Core/LocalDB.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace corvane {

/// A second connection to the database file, such as an engine or the tool server has.
class OtherProcess {
public:
    explicit OtherProcess(const QString& path) { EXPECT_EQ(sqlite3_open(path.toUtf8().constData(), &m_db), SQLITE_OK); }
    ~OtherProcess() { sqlite3_close(m_db); }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    void exec(const char* sql) { EXPECT_EQ(sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql; }

private:
    sqlite3* m_db = nullptr;
};

/// A fixture with its own database with the real schema, a virtual clock and a captured log.
class StoreTest : public testing::Test {
protected:
    QString path() const { return m_home.paths().database(); }

    /// Reopens the file, as the next start of the program does.
    LocalDB& open()
    {
        m_db.reset();
        const LocalDB::SchemaFolders folders { m_home.paths().resources, m_home.paths().home };
        m_db = std::make_unique<LocalDB>(path(), folders, m_clock, m_defaults, m_centre);
        return *m_db;
    }

    /// The rows of a query, with columns joined by "|" and NULL as "-".
    QStringList table(const QString& sql, const QList<SqlValue>& parameters = {})
    {
        const auto columns = static_cast<int>(sql.section(u" FROM "_s, 0, 0).count(u',')) + 1;
        return m_db->rows(sql, parameters, [&](const SqlRow& row) {
            QStringList values;
            for (int column = 0; column < columns; ++column)
                values.append(row.optionalText(column).value_or(u"-"_s));
            return values.join(u'|');
        });
    }

    QString cell(const QString& sql) { return m_db->scalar(sql).value_or(u"-"_s); }

    TemporaryHome m_home;
    LogCapture m_log;
    VirtualScheduler m_clock;
    UserDefaults m_defaults { m_home.paths().defaultsFile };
    NotificationCentre m_centre;
    std::unique_ptr<LocalDB> m_db;
};

}
