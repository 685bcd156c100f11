#pragma once

#include "Store/Core/LocalDB.h"

#include <QStringList>
#include <utility>
#include <variant>

namespace corvane {

template <typename Row>
using RowMember = std::variant<std::monostate, QString Row::*, std::optional<QString> Row::*, qint64 Row::*,
    std::optional<qint64> Row::*, int Row::*, bool Row::*, double Row::*, QStringList Row::*>;

constexpr const char* asStored = nullptr;
constexpr const char* onlyRead = nullptr;

/// A column and the member that it fills; without a member it is only written. A QStringList is stored as words
/// separated by commas.
template <typename Row> struct Column {
    const char* name; ///< may include the table's alias; an expression if it is only read
    RowMember<Row> member = {};
    const char* forNull = asStored; ///< SQL: what SELECT returns instead of NULL
    const char* written = "?"; ///< SQL: its value in the INSERT; `onlyRead` omits it
};

/// Values of an INSERT by column name, without an alias: for columns without a member, or instead of a member's.
using GivenValues = QList<std::pair<const char*, SqlValue>>;

/// The part of `Table` that does not depend on the type of its rows.
class TableText {
public:
    const QString& name() const { return m_name; } ///< without the alias
    const QString& select() const { return m_select; } ///< "SELECT {columns} FROM {table}" and a newline
    const QString& from() const { return m_from; } ///< "FROM {table}" and a newline, the end of `select`
    const QString& insertion() const { return m_insertion; } ///< "INSERT INTO {table}({columns}) VALUES({values})"

protected:
    struct Part {
        const char* name;
        const char* forNull;
        const char* written;
        bool isRead;
    };
    TableText(const char* table, const QList<Part>& parts);

    static bool isBound(const char* written);
    static const SqlValue* find(const GivenValues& given, const char* column);

    static void fill(QString& member, const SqlRow& row, int column);
    static void fill(std::optional<QString>& member, const SqlRow& row, int column);
    static void fill(qint64& member, const SqlRow& row, int column);
    static void fill(std::optional<qint64>& member, const SqlRow& row, int column);
    static void fill(int& member, const SqlRow& row, int column);
    static void fill(bool& member, const SqlRow& row, int column);
    static void fill(double& member, const SqlRow& row, int column);
    static void fill(QStringList& member, const SqlRow& row, int column);

    template <typename Value> static SqlValue bound(const Value& member) { return member; }
    static SqlValue bound(bool member) { return member ? 1 : 0; }
    static SqlValue bound(const QStringList& member) { return member.join(u','); }

private:
    QString m_name;
    QString m_from;
    QString m_select;
    QString m_insertion;
};

/// The columns of a table and the members that they fill, declared once: the SELECT list, the reader and the INSERT are
/// generated from it, so that nothing is read or bound by position. Rows are plain values; joins, conditions and the
/// conflict clause of an upsert are written where they are used.
template <typename Row> class Table : public TableText {
public:
    /// `name` may include an alias for joins.
    Table(const char* name, std::initializer_list<Column<Row>> columns)
        : TableText(name, partsOf(columns))
        , m_columns(columns)
    {
    }

    Row read(const SqlRow& row) const
    {
        Row result {};
        int index = 0;
        const auto fillNext = [&](const auto member) {
            if constexpr (isMember<decltype(member)>)
                fill(result.*member, row, index++);
        };
        for (const Column<Row>& column : m_columns)
            std::visit(fillNext, column.member);
        return result;
    }

    /// The rows of `select` followed by `rest`.
    QList<Row> rows(SqlConnection& db, const QString& rest, const QList<SqlValue>& parameters) const
    {
        return db.rows(select() + rest, parameters, [this](const SqlRow& row) { return read(row); });
    }

    std::optional<Row> first(SqlConnection& db, const QString& rest, const QList<SqlValue>& parameters) const
    {
        return db.firstRow(select() + rest, parameters, [this](const SqlRow& row) { return read(row); });
    }

    /// The values to bind to `insertion`, in order.
    QList<SqlValue> values(const Row& row, const GivenValues& given = {}) const
    {
        QList<SqlValue> values;
        for (const Column<Row>& column : m_columns) {
            if (!isBound(column.written))
                continue;
            const SqlValue* const value = find(given, column.name);
            Q_ASSERT(value || column.member.index() != 0); // a column without a member is always given
            values.append(
                value ? *value : std::visit([&](const auto member) { return of(row, member); }, column.member));
        }
        return values;
    }

    /// False and a log line on failure. `onConflict` makes it an upsert.
    bool insert(LocalDB& db, const Row& row, const GivenValues& given = {}, const char* onConflict = "") const
    {
        return db.run(insertion() + QLatin1StringView(onConflict) + u';', values(row, given));
    }

private:
    template <typename Member> static constexpr bool isMember = !std::is_same_v<Member, const std::monostate>;

    static QList<Part> partsOf(std::initializer_list<Column<Row>> columns)
    {
        QList<Part> parts;
        for (const auto& [name, member, forNull, written] : columns)
            parts.append({ name, forNull, written, member.index() != 0 });
        return parts;
    }

    template <typename Member> static SqlValue of(const Row& row, const Member member)
    {
        if constexpr (isMember<const Member>)
            return bound(row.*member);
        else
            return {};
    }

    QList<Column<Row>> m_columns;
};

}
