#pragma once

#include <QByteArray>
#include <sqlite3.h>

namespace corvane::bench {

/// A statement of the C interface: prepared once, run repeatedly with values that it does not copy.
class BareStatement {
public:
    BareStatement(sqlite3* db, const QByteArray& sql)
    {
        if (sqlite3_prepare_v2(db, sql.constData(), -1, &m_statement, nullptr) != SQLITE_OK)
            qFatal("%s: %s", sqlite3_errmsg(db), sql.constData());
    }
    BareStatement(BareStatement&& other) noexcept
        : m_statement(std::exchange(other.m_statement, nullptr))
    {
    }
    ~BareStatement() { sqlite3_finalize(m_statement); }

    /// Binds in order and steps; returns whether there is a row.
    template <typename... Values> bool step(const Values&... values)
    {
        int index = 0;
        (bind(++index, values), ...);
        const int code = sqlite3_step(m_statement);
        if (code != SQLITE_DONE && code != SQLITE_ROW)
            qFatal("%s", sqlite3_errmsg(sqlite3_db_handle(m_statement)));
        return code == SQLITE_ROW;
    }

    template <typename... Values> void run(const Values&... values)
    {
        step(values...);
        sqlite3_reset(m_statement);
    }

    sqlite3_stmt* get() const { return m_statement; }

private:
    void bind(int index, const QByteArray& text) { bind(index, text.constData()); }
    void bind(int index, const char* text) { sqlite3_bind_text(m_statement, index, text, -1, SQLITE_STATIC); }
    void bind(int index, qint64 integer) { sqlite3_bind_int64(m_statement, index, integer); }
    void bind(int index, std::nullptr_t) { sqlite3_bind_null(m_statement, index); }

    sqlite3_stmt* m_statement = nullptr;
};

}
