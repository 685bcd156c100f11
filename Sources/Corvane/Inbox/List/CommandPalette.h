#pragma once

#include "Presentation/Commands.h"
#include "Presentation/RowListModel.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Search/RecordQueries.h"

namespace corvane {

/// A line of the palette.
class PaletteItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString section MEMBER section)
    Q_PROPERTY(bool isAction MEMBER isAction)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString platform MEMBER platform)
    Q_PROPERTY(QString avatarPath MEMBER avatarPath)
    Q_PROPERTY(QString initials MEMBER initials)
    Q_PROPERTY(int hue MEMBER hue)
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(bool highlighted MEMBER highlighted)
public:
    QString id; ///< "contact:{id}" or "action:{id of the command}"; other results have a prefix of their own
    QString section; ///< what stands above the first of its kind
    bool isAction = false;
    QString label;
    QString detail; ///< channels of a contact, keys of an action
    QString platform; ///< the first channel of a contact
    QString avatarPath;
    QString initials;
    int hue = 0;
    QString icon; ///< for results that are neither a contact nor an action
    bool highlighted = false;
    QString contactId; ///< for a contact
    FoundRecord record; ///< for a result of the search
    QString completed; ///< for a narrowing word: the query with it

    static constexpr const char* role = "entry";
    const QString& key() const { return id; }
    bool operator==(const PaletteItem&) const = default;
};

/// Contacts first, then actions, then the words that narrow a search and start as the query's last word does; for a
/// query, the search for it comes last.
QList<PaletteItem> paletteItems(
    const QList<ContactRow>& contacts, const QList<Command>& commands, const QString& query);

/// Jumps to a person, runs an action or starts a search by a few typed letters.
class CommandPalette : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(int index READ index WRITE setIndex NOTIFY indexChanged)
    Q_PROPERTY(corvane::HoldingListModel* items READ items CONSTANT)
    Q_PROPERTY(QString searchWords READ searchWords CONSTANT) ///< a line on the words that narrow a search
public:
    explicit CommandPalette(QObject* parent = nullptr);

    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    int index() const { return m_index; } ///< of the highlighted line
    void setIndex(int index);
    HoldingListModel* items() { return &m_items; }
    QString searchWords() const;

    void setCommands(Commands& commands) { m_commands = &commands; } ///< they outlive the palette
    void setContacts(const QList<ContactRow>& contacts);
    void setFound(const QList<FoundRecord>& records); ///< what else the query found; may still be an older query's
    void refresh(); ///< when the available actions may have changed; a line that the highlight was moved to keeps it

    Q_INVOKABLE void open(); ///< with an empty query and the first line selected
    Q_INVOKABLE void moveUp() { setIndex(m_index - 1); }
    Q_INVOKABLE void moveDown() { setIndex(m_index + 1); }
    Q_INVOKABLE void runHighlighted() { run(m_index); }
    Q_INVOKABLE void run(int index);
    Q_INVOKABLE void close();

Q_SIGNALS:
    void queryChanged();
    void indexChanged();
    void contactChosen(const QString& contactId);
    void searchChosen(const QString& query);
    void foundChosen(const FoundRecord& record, const QString& query); ///< a result of the search
    void closed();

private:
    void present(const QString& highlighted = {}); ///< an item's id; else the index stays

    QString m_query;
    int m_index = 0;
    Commands* m_commands = nullptr;
    QList<ContactRow> m_contacts;
    QList<FoundRecord> m_found;
    bool m_isOpen = false; ///< a closed palette is not updated
    RowListModel<PaletteItem> m_items;
};

}
