#pragma once

#include "Foundation/Literals.h"
#include "Store/Core/SqlConnection.h"
#include "Web/Away.h"

namespace corvane {

/// A connection for the reads of a push, which run on a background thread, one after the other.
class CloudReader {
public:
    explicit CloudReader(QString path)
        : m_path(std::move(path))
    {
    }

    void stop() { m_stopped->store(true); } ///< on any thread: aborts the running query

    /// On any thread. The error is for the user.
    template <typename Value> Result<Value> read(const std::function<Value(SqlConnection&)>& query)
    {
        if (!m_connection)
            m_connection = SqlConnection::reader(m_path, m_stopped);
        m_connection->forgetFailure();
        Value value = query(*m_connection);
        if (const int code = m_connection->failure(); code != 0)
            return failure(u"The messages could not be read (SQLite says %1)."_s.arg(code));
        return value;
    }

private:
    const QString m_path;
    const std::shared_ptr<std::atomic<bool>> m_stopped = std::make_shared<std::atomic<bool>>(false);
    std::unique_ptr<SqlConnection> m_connection;
};

}
