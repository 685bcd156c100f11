#include "Inbox/List/CommandPalette.h"

#include "Inbox/List/ContactItem.h"
#include "Presentation/DateWords.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype contactsWithQuery = 30;
constexpr qsizetype contactsWithoutQuery = 8;

struct Action {
    PaletteAction action;
    QString word;
    QString label;
    QString keys;
    bool needsSelection;
};

const QList<Action>& actions()
{
    static const QList<Action> all {
        { PaletteAction::ArchiveCurrent, QStringLiteral("archiveCurrent"),
            QStringLiteral("Archive current conversation"), QStringLiteral("E"), true },
        { PaletteAction::MuteCurrent, QStringLiteral("muteCurrent"),
            QStringLiteral("Mute / unmute current conversation"), QStringLiteral("M"), true },
        { PaletteAction::ToggleCRM, QStringLiteral("toggleCRM"), QStringLiteral("Toggle contact panel"), {}, true },
        { PaletteAction::MarkAllRead, QStringLiteral("markAllRead"), QStringLiteral("Mark all as read"), {}, false },
        { PaletteAction::OpenApprovals, QStringLiteral("openApprovals"), QStringLiteral("Open Approvals"),
            QStringLiteral("Ctrl+Shift+A"), false },
    };
    return all;
}

PaletteItem contactLine(const ContactRow& row)
{
    const ContactItem contact = contactItem(row, {}, DateWords(0));
    PaletteItem item;
    item.id = QStringLiteral("contact:") + row.id;
    item.label = contact.name;
    item.detail = contact.platformLabels.join(QStringLiteral(", "));
    item.platform = row.platforms.value(0);
    item.avatarPath = contact.avatarPath;
    item.initials = contact.initials;
    item.hue = contact.hue;
    item.contactId = row.id;
    return item;
}

PaletteItem actionLine(const Action& action)
{
    PaletteItem item;
    item.id = QStringLiteral("action:") + action.word;
    item.isAction = true;
    item.label = action.label;
    item.detail = action.keys;
    item.action = action.action;
    return item;
}

}

QList<PaletteItem> paletteItems(const QList<ContactRow>& contacts, bool hasSelection, const QString& query)
{
    const QString wanted = query.toLower();
    const qsizetype limit = query.isEmpty() ? contactsWithoutQuery : contactsWithQuery;
    QList<PaletteItem> items;
    for (const ContactRow& row : contacts) {
        if (items.size() == limit)
            break;
        if (row.name.toLower().contains(wanted))
            items.append(contactLine(row));
    }
    for (const Action& action : actions()) {
        if ((hasSelection || !action.needsSelection) && action.label.toLower().contains(wanted))
            items.append(actionLine(action));
    }
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

void CommandPalette::setIndex(int index)
{
    const int clamped = std::clamp(index, 0, std::max(0, m_items.rowCount() - 1));
    if (m_index == clamped)
        return;
    m_index = clamped;
    present();
    Q_EMIT indexChanged();
}

QString CommandPalette::emptyText() const
{
    return m_items.rows().isEmpty() ? QStringLiteral("Nothing matches “%1”").arg(m_query) : QString();
}

void CommandPalette::setContacts(const QList<ContactRow>& contacts)
{
    m_contacts = contacts;
    if (m_isOpen)
        present();
}

void CommandPalette::setHasSelection(bool hasSelection)
{
    m_hasSelection = hasSelection;
    if (m_isOpen)
        present();
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
    close();
    if (item.isAction)
        Q_EMIT actionChosen(item.action);
    else
        Q_EMIT contactChosen(item.contactId);
}

void CommandPalette::present()
{
    QList<PaletteItem> items = paletteItems(m_contacts, m_hasSelection, m_query);
    m_index = std::clamp(m_index, 0, std::max(0, int(items.size()) - 1));
    if (!items.isEmpty())
        items[m_index].highlighted = true;
    m_items.assign(items);
}

}
