#include "Store/Core/Table.h"

#include "Foundation/Literals.h"

#include <algorithm>
#include <cstring>

namespace corvane {

TableText::TableText(const char* table, const QList<Part>& parts)
    : m_name(QString::fromLatin1(table).section(u' ', 0, 0))
    , m_from(u"FROM %1\n"_s.arg(QLatin1StringView(table)))
{
    QStringList read;
    QStringList written;
    QStringList values;
    for (const Part& part : parts) {
        const QString name = QString::fromLatin1(part.name);
        if (part.isRead && part.forNull)
            read.append(u"COALESCE(%1,%2)"_s.arg(name, QLatin1StringView(part.forNull)));
        else if (part.isRead)
            read.append(name);
        if (part.written) {
            written.append(name.section(u'.', -1));
            values.append(QString::fromLatin1(part.written));
        }
    }
    const QString comma = u", "_s;
    m_select = u"SELECT %1\n"_s.arg(read.join(comma)) + m_from;
    m_insertion = u"INSERT INTO %1(%2)\nVALUES(%3)"_s.arg(m_name, written.join(comma), values.join(u','));
}

bool TableText::isBound(const char* written)
{
    return qstrcmp(written, "?") == 0;
}

const SqlValue* TableText::find(const GivenValues& given, const char* column)
{
    const char* const alias = std::strchr(column, '.');
    const char* const name = alias ? alias + 1 : column;
    const auto found = std::ranges::find_if(given, [&](const auto& value) { return qstrcmp(value.first, name) == 0; });
    return found == given.end() ? nullptr : &found->second;
}

void TableText::fill(QString& member, const SqlRow& row, int column)
{
    member = row.text(column);
}

void TableText::fill(std::optional<QString>& member, const SqlRow& row, int column)
{
    member = row.optionalText(column);
}

void TableText::fill(qint64& member, const SqlRow& row, int column)
{
    member = row.integer(column);
}

void TableText::fill(std::optional<qint64>& member, const SqlRow& row, int column)
{
    member = row.optionalInteger(column);
}

void TableText::fill(int& member, const SqlRow& row, int column)
{
    member = static_cast<int>(row.integer(column));
}

void TableText::fill(bool& member, const SqlRow& row, int column)
{
    member = row.integer(column) != 0;
}

void TableText::fill(double& member, const SqlRow& row, int column)
{
    member = row.real(column);
}

void TableText::fill(QStringList& member, const SqlRow& row, int column)
{
    member = row.text(column).split(u',', Qt::SkipEmptyParts);
}

}
