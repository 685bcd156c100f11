#include "Store/Core/Salvage.h"

#include "Foundation/Literals.h"

#include <QFile>
#include <cerrno>
#include <deque>
#include <fcntl.h>
#include <limits>
#include <numeric>
#include <sqlite3.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr qint64 blockBytes = 4096; // of a disk, and of a page
constexpr int headerBytes = 100; // of a database
constexpr int mostProbes = 100'000; // into one table: about as many gaps

struct Close {
    void operator()(sqlite3* db) const { sqlite3_close(db); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Close>;
using Statement = std::unique_ptr<sqlite3_stmt, Close>;

Database opened(const QString& path)
{
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr);
    return Database(db);
}

Statement prepared(const Database& db, const QString& sql)
{
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db.get(), sql.toUtf8().constData(), -1, &statement, nullptr);
    return Statement(statement);
}

bool executed(const Database& db, const QString& sql)
{
    return sqlite3_exec(db.get(), sql.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

QString textOf(sqlite3_stmt* statement, int column)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
}

QString quoted(QString name)
{
    return u'"' + name.replace(u'"', u"\"\""_s) + u'"';
}

/// Unreadable disk blocks become zeros.
Result<void> copyBlocks(const QString& from, const QString& to, const std::atomic<bool>& stopped)
{
    QFile source(from);
    QFile copy(to);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || !copy.open(QIODevice::WriteOnly))
        return failure(u"%1 cannot be copied."_s.arg(from));
    const qint64 size = source.size();
    for (qint64 at = 0; at < size && !stopped; at += blockBytes) {
        QByteArray block(std::min(blockBytes, size - at), '\0');
        const ssize_t read = ::pread(source.handle(), block.data(), size_t(block.size()), at);
        if (read < 0 && errno != EIO)
            return failure(u"%1 cannot be read."_s.arg(from));
        if (copy.write(block) != block.size())
            return failure(u"There is not enough room on the disk."_s);
    }
    if (!copy.flush())
        return failure(u"There is not enough room on the disk."_s);
    return {};
}

/// If the file's header is lost, it is replaced by that of a file with the same schema.
void mendHeader(const QString& path, const QString& sound)
{
    QFile file(path);
    QFile model(sound);
    if (!file.open(QIODevice::ReadWrite) || !model.open(QIODevice::ReadOnly))
        return;
    const QByteArray magic("SQLite format 3", 16);
    if (file.read(magic.size()) == magic)
        return;
    QByteArray header = model.read(headerBytes);
    std::fill_n(header.begin() + 28, 12, '\0'); // page count and free list: SQLite then asks the file itself
    file.seek(0);
    file.write(header);
}

/// The copy of the corrupt database and the new one, and copying rows between them.
class Copier {
public:
    Copier(Database from, Database to, SalvageProgress& progress)
        : m_from(std::move(from))
        , m_to(std::move(to))
        , m_progress(progress)
    {
    }

    Result<Salvaged> run()
    {
        for (const char* pragma : { "PRAGMA writable_schema=ON;", "PRAGMA cell_size_check=ON;" })
            executed(m_from, QString::fromLatin1(pragma));
        // The rows come in the order of none of the indexes, so many pages are in use at once.
        for (const char* pragma :
            { "PRAGMA journal_mode=DELETE;", "PRAGMA foreign_keys=OFF;", "PRAGMA cache_size=-65536;" })
            executed(m_to, QString::fromLatin1(pragma));
        const QList<Table> tables = readableTables();
        if (tables.isEmpty())
            return failure(u"Nothing can be read from the damaged file."_s);
        m_progress.allTables = int(tables.size());
        for (const Table& table : tables) {
            ++m_progress.tables;
            if (!executed(m_to, u"BEGIN;"_s) || !copy(table) || !executed(m_to, u"COMMIT;"_s))
                return failure(m_progress.stopped
                        ? u"Stopped."_s
                        : u"The new file cannot be written: %1."_s.arg(QString::fromUtf8(sqlite3_errmsg(m_to.get()))));
        }
        m_salvaged.rows = m_progress.rows;
        return m_salvaged;
    }

private:
    struct Table {
        QString name;
        QString sql;
    };
    /// A range of row ids that have not been read, both ends included.
    struct Gap {
        qint64 first;
        qint64 last;
    };
    enum class Direction { Up, Down };
    enum class End { Reached, Torn, Failed };

    QList<Table> readableTables() const
    {
        QList<Table> tables;
        const Statement statement = prepared(m_from,
            u"SELECT name, sql FROM sqlite_master WHERE type='table' AND sql LIKE 'CREATE TABLE%' "
            "AND name NOT LIKE 'sqlite_%' AND name != 'write_probe';"_s);
        while (statement && sqlite3_step(statement.get()) == SQLITE_ROW)
            tables.append({ textOf(statement.get(), 0), textOf(statement.get(), 1) });
        return tables;
    }

    bool copy(const Table& table)
    {
        const QStringList columns = matchColumns(table);
        if (columns.isEmpty()) {
            m_salvaged.tornTables.append(table.name);
            return true;
        }
        const QString list = columns.join(u", "_s);
        const QString range = u"SELECT rowid, %1 FROM %2 NOT INDEXED WHERE rowid BETWEEN ? AND ? ORDER BY "
                              "rowid %3;"_s;
        m_up = prepared(m_from, range.arg(list, quoted(table.name), u"ASC"_s));
        m_down = prepared(m_from, range.arg(list, quoted(table.name), u"DESC"_s));
        m_insert = prepared(m_to,
            u"INSERT OR IGNORE INTO %1(rowid, %2) VALUES(?%3);"_s.arg(
                quoted(table.name), list, u",?"_s.repeated(columns.size())));
        m_torn = !m_up || !m_down || !m_insert;
        const bool written = m_torn || fillGaps();
        if (m_torn)
            m_salvaged.tornTables.append(table.name);
        return written;
    }

    /// The quoted columns; missing ones are added to the new table.
    QStringList matchColumns(const Table& table)
    {
        executed(m_to, QString(table.sql).replace(0, 12, u"CREATE TABLE IF NOT EXISTS"_s));
        QStringList columns;
        const Statement info = prepared(m_from, u"PRAGMA table_info(%1);"_s.arg(quoted(table.name)));
        while (info && sqlite3_step(info.get()) == SQLITE_ROW) {
            const QString column = quoted(textOf(info.get(), 1));
            executed(
                m_to, u"ALTER TABLE %1 ADD COLUMN %2 %3;"_s.arg(quoted(table.name), column, textOf(info.get(), 2)));
            columns.append(column);
        }
        return columns;
    }

    /// False if the new file cannot be written.
    bool fillGaps()
    {
        std::deque<Gap> gaps { { std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max() } };
        for (int probes = 0; !gaps.empty() && probes < mostProbes; ++probes) {
            Gap gap = gaps.front();
            gaps.pop_front();
            End end = readInto(gap, Direction::Up);
            if (end == End::Torn)
                end = readInto(gap, Direction::Down);
            if (end == End::Failed)
                return false;
            if (end == End::Reached || gap.first >= gap.last)
                continue;
            const qint64 middle = std::midpoint(gap.first, gap.last);
            gaps.push_back({ gap.first, middle });
            gaps.push_back({ middle + 1, gap.last });
        }
        return true;
    }

    /// Copies rows from one end of the gap, shrinking it, until its other end or an unreadable page.
    End readInto(Gap& gap, Direction direction)
    {
        sqlite3_stmt* const read = (direction == Direction::Up ? m_up : m_down).get();
        sqlite3_reset(read);
        sqlite3_bind_int64(read, 1, gap.first);
        sqlite3_bind_int64(read, 2, gap.last);
        int code = SQLITE_ROW;
        while ((code = sqlite3_step(read)) == SQLITE_ROW) {
            const qint64 row = sqlite3_column_int64(read, 0);
            if (row < gap.first || row > gap.last)
                break; // the tree is circular
            if (m_progress.stopped || !insert(read))
                return End::Failed;
            if (row == (direction == Direction::Up ? gap.last : gap.first))
                return End::Reached;
            direction == Direction::Up ? gap.first = row + 1 : gap.last = row - 1;
        }
        if (code == SQLITE_DONE)
            return End::Reached;
        m_torn = true;
        return End::Torn;
    }

    bool insert(sqlite3_stmt* row)
    {
        sqlite3_reset(m_insert.get());
        const int columns = sqlite3_column_count(row);
        for (int column = 0; column < columns; ++column)
            sqlite3_bind_value(m_insert.get(), column + 1, sqlite3_column_value(row, column));
        if (sqlite3_step(m_insert.get()) != SQLITE_DONE)
            return false;
        if (sqlite3_changes(m_to.get()) > 0)
            ++m_progress.rows;
        else
            m_torn = true;
        return true;
    }

    Database m_from;
    Database m_to;
    SalvageProgress& m_progress;
    Salvaged m_salvaged;
    Statement m_up;
    Statement m_down;
    Statement m_insert;
    bool m_torn = false; ///< of the table that is copied
};

}

Result<Salvaged> salvage(const QString& damaged, const QString& target, SalvageProgress& progress)
{
    const QString copy = target + u".copy"_s;
    const QString wal = u"-wal"_s;
    auto copied = copyBlocks(damaged, copy, progress.stopped);
    if (copied && QFile::exists(damaged + wal))
        copied = copyBlocks(damaged + wal, copy + wal, progress.stopped);
    Result<Salvaged> result = failure(copied ? QString() : copied.error().message);
    if (copied) {
        mendHeader(copy, target);
        result = Copier(opened(copy), opened(target), progress).run();
    }
    for (const QString& suffix : { QString(), wal, u"-shm"_s, u"-journal"_s })
        QFile::remove(copy + suffix);
    return result;
}

}
