#include "Inbox/List/CommandPalette.h"

#include "Foundation/Literals.h"
#include "Inbox/List/ContactItem.h"
#include "Inbox/List/HitText.h"
#include "Inbox/List/RecordHitItem.h"
#include "Presentation/DateWords.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype contactsWithQuery = 30;
constexpr qsizetype contactsWithoutQuery = 8;
constexpr qsizetype mostFound = 12;

const QString searchId = u"searchMessages"_s;

PaletteItem contactLine(const ContactRow& row)
{
    const ContactItem contact = contactItem(row, {}, DateWords(0));
    PaletteItem item;
    item.id = u"contact:"_s + row.id;
    item.section = u"People"_s;
    item.label = contact.name;
    item.detail = contact.platformLabels.join(u", "_s);
    item.platform = row.platforms.value(0);
    item.avatarPath = contact.avatarPath;
    item.initials = contact.initials;
    item.hue = contact.hue;
    item.contactId = row.id;
    return item;
}

PaletteItem actionLine(const QString& id, const QString& label, const QString& keys)
{
    PaletteItem item;
    item.id = u"action:"_s + id;
    item.section = u"Actions"_s;
    item.isAction = true;
    item.label = label;
    item.detail = keys;
    return item;
}

PaletteItem foundLine(const FoundRecord& record)
{
    PaletteItem item;
    item.id = recordKey(record);
    item.section = groupLabel(record.group);
    item.label = lineOf(record.title);
    item.detail = record.module.isEmpty() ? record.kind : record.kind + u", "_s + record.module;
    item.icon = recordIcon(record);
    item.record = record;
    return item;
}

/// The words that narrow a search, as the last word is typed.
QList<PaletteItem> narrowingLines(const QString& query)
{
    QList<PaletteItem> items;
    const QString typed = query.section(u' ', -1).toLower();
    if (typed.size() < 2)
        return items;
    for (const NarrowingWord& narrowing : narrowingWords()) {
        const QString word = narrowing.word + u':';
        if (!word.startsWith(typed))
            continue;
        PaletteItem item;
        item.id = u"narrow:"_s + narrowing.word;
        item.section = u"Narrow the search"_s;
        item.label = narrowing.example;
        item.detail = narrowing.what;
        item.icon = u"filter"_s;
        item.completed = query.chopped(typed.size()) + word;
        items.append(item);
    }
    return items;
}

}

QList<PaletteItem> paletteItems(const QList<ContactRow>& contacts, const QList<Command>& commands, const QString& query)
{
    const QString wanted = query.trimmed().toLower();
    const qsizetype limit = wanted.isEmpty() ? contactsWithoutQuery : contactsWithQuery;
    QList<PaletteItem> items;
    for (const ContactRow& row : contacts) {
        if (items.size() == limit)
            break;
        if (row.name.toLower().contains(wanted))
            items.append(contactLine(row));
    }
    for (const Command& command : commands) {
        const bool possible = !command.action.isEmpty() && (!command.canRun || command.canRun());
        if (possible && command.action.toLower().contains(wanted))
            items.append(actionLine(command.id, command.action, command.keys));
    }
    items += narrowingLines(query);
    if (!wanted.isEmpty())
        items.append(actionLine(searchId, u"Search messages for “%1”"_s.arg(query.trimmed()), {}));
    return items;
}

CommandPalette::CommandPalette(QObject* parent)
    : QObject(parent)
{
}

void CommandPalette::setQuery(const QString& query)
{
    if (m_query == query)
        return;
    m_query = query;
    m_index = 0;
    present();
    Q_EMIT queryChanged();
    Q_EMIT indexChanged();
}

QString CommandPalette::searchWords() const
{
    QStringList words;
    for (const NarrowingWord& narrowing : narrowingWords())
        words.append(narrowing.word + u':');
    return u"Narrow a search with "_s + words.join(u' ');
}

void CommandPalette::setIndex(int index)
{
    const int clamped = std::clamp(index, 0, std::max(0, m_items.rowCount() - 1));
    if (m_index == clamped)
        return;
    m_index = clamped;
    present();
    Q_EMIT indexChanged();
}

void CommandPalette::setContacts(const QList<ContactRow>& contacts)
{
    m_contacts = contacts;
    refresh();
}

void CommandPalette::setFound(const QList<FoundRecord>& records)
{
    m_found = records;
    refresh();
}

void CommandPalette::refresh()
{
    if (!m_isOpen)
        return;
    const int before = m_index;
    present(before > 0 ? m_items.rows().value(before).id : QString());
    if (m_index != before)
        Q_EMIT indexChanged();
}

void CommandPalette::open()
{
    m_isOpen = true;
    m_query.clear();
    m_index = 0;
    present();
    Q_EMIT queryChanged();
    Q_EMIT indexChanged();
}

void CommandPalette::close()
{
    if (!m_isOpen)
        return;
    m_isOpen = false;
    Q_EMIT closed();
}

void CommandPalette::run(int index)
{
    if (index < 0 || index >= m_items.rowCount())
        return;
    const PaletteItem item = m_items.rows().at(index);
    if (!item.completed.isEmpty())
        return setQuery(item.completed);
    const QString query = m_query.trimmed();
    close();
    if (!item.record.id.isEmpty())
        return Q_EMIT foundChosen(item.record, query);
    if (!item.isAction)
        return Q_EMIT contactChosen(item.contactId);
    const QString id = item.id.section(u':', 1);
    if (id == searchId)
        Q_EMIT searchChosen(query);
    else
        m_commands->run(id);
}

void CommandPalette::present(const QString& highlighted)
{
    QList<PaletteItem> items = paletteItems(m_contacts, m_commands ? m_commands->all() : QList<Command>(), m_query);
    if (!m_query.trimmed().isEmpty()) {
        const PaletteItem search = items.takeLast();
        for (const FoundRecord& record : m_found.first(std::min(mostFound, m_found.size())))
            items.append(foundLine(record));
        items.append(search);
    }
    const auto at = std::ranges::find(items, highlighted, &PaletteItem::id);
    m_index = std::clamp(at == items.end() ? m_index : int(at - items.begin()), 0, std::max(0, int(items.size()) - 1));
    if (!items.isEmpty())
        items[m_index].highlighted = true;
    m_items.assign(items);
}

}
