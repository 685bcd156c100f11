#include "Mirror.h"
#include "BareStatement.h"
#include "Foundation/Literals.h"

#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Store/Core/LocalDB.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Places.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtDebug>
#include <array>
#include <random>
#include <vector>

namespace corvane::bench {

namespace {

constexpr qint64 end = 1'760'000'000'000; // the newest message
constexpr qint64 span = 2LL * 365 * 86'400'000; // two years before it

struct Network {
    const char* channel;
    const char* account;
    const char* handle; ///< %1: a number
};

constexpr std::array<Network, 6> networks { {
    { "WHATSAPP", "main", "346%1@s.whatsapp.net" },
    { "WHATSAPP", "shop", "120363%1@g.us" },
    { "EMAIL", "office", "person%1@example.com" },
    { "TELEGRAM", "bot", "90%1" },
    { "SMS", "line", "+346%1" },
    { "LINKEDIN", "profile", "ACoAAB%1" },
} };

constexpr std::array words { "order", "tomorrow", "thanks", "invoice", "morning", "delivery", "please", "photo",
    "meeting", "price", "green", "window", "address", "later", "perfect", "question", "weekend", "sample" };

struct Conversation {
    QByteArray id;
    QByteArray contact;
    QByteArray handle;
    const Network* network;
    qint64 lastTs = 0;
    int person = 0; ///< index among all people
    int firstMember = 0; ///< for a group

    bool isGroup() const { return handle.endsWith("@g.us"); }
};

class Generator {
public:
    Generator(sqlite3* db, const MirrorSize& size)
        : m_db(db)
        , m_size(size)
    {
    }

    void fill()
    {
        // No other process has the file open, and indexes created at the end are sorted instead of searched.
        run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA cache_size=-1000000;");
        const QByteArray indexes = textOf("SELECT group_concat(sql, ';') FROM sqlite_master WHERE type='index';");
        run(textOf("SELECT group_concat('DROP INDEX ' || name, ';') FROM sqlite_master WHERE type='index' AND sql IS "
                   "NOT NULL;"));
        run("BEGIN;");
        addContacts();
        addMessages();
        addConversations();
        run(indexes);
        run("COMMIT; PRAGMA journal_mode=WAL;");
    }

private:
    void run(const QByteArray& sql)
    {
        if (sqlite3_exec(m_db, sql.constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
            qFatal("%s", sqlite3_errmsg(m_db));
    }

    QByteArray textOf(const QByteArray& sql)
    {
        BareStatement statement(m_db, sql);
        statement.step();
        return reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0));
    }

    int below(int limit) { return static_cast<int>(m_random() % static_cast<quint64>(limit)); }
    bool oneIn(int count) { return below(count) == 0; }

    /// Every contact has a conversation; the remaining ones belong to people on a second channel.
    void addContacts()
    {
        BareStatement contact(m_db, "INSERT INTO contact(id, display_name, avatar_path, updated_at) VALUES(?,?,?,?);");
        BareStatement identity(m_db,
            "INSERT INTO contact_identity(id, contact_id, channel, handle, email, phone, updated_at) "
            "VALUES(?,?,?,?,?,?,?);");
        for (int index = 0; index < m_size.conversations; ++index) {
            const Network& network = networks[static_cast<std::size_t>(below(networks.size()))];
            // Multiplication in a prime field yields each number once, out of order.
            const qint64 number = 10'000'000 + index * 48'271'441LL % 99'999'989;
            Conversation conversation { {}, {}, QString::fromUtf8(network.handle).arg(number).toUtf8(), &network, 0, 0,
                below(m_size.contacts) };
            conversation.id = QByteArray("wa:") + network.account + ':' + conversation.handle;
            if (index < m_size.contacts) {
                conversation.contact = QByteArray("ct:") + network.channel + ':' + conversation.handle;
                const QByteArray name = u"Person %1 of %2"_s.arg(index).arg(word()).toUtf8();
                const QByteArray avatar = oneIn(3) ? "/media/avatars/" + QByteArray::number(index) + ".jpg" : "";
                contact.run(conversation.contact, name, avatar, end - below(1'000'000));
                m_names.push_back(name);
                conversation.person = index;
            } else {
                conversation.person = below(m_size.contacts);
                conversation.contact = m_conversations[static_cast<std::size_t>(conversation.person)].contact;
            }
            const MatchSignals implied
                = matchSignals(QString::fromUtf8(network.channel), QString::fromUtf8(conversation.handle));
            const auto addIdentity = [&](const auto& email, const auto& phone) {
                identity.run(QByteArray("id:") + network.channel + ':' + conversation.handle, conversation.contact,
                    QByteArray(network.channel), conversation.handle, email, phone, end);
            };
            if (implied.email)
                addIdentity(oneIn(50) ? QByteArray("team@example.com") : implied.email->toUtf8(), nullptr);
            else if (implied.phone)
                addIdentity(nullptr, implied.phone->toUtf8());
            else
                addIdentity(nullptr, nullptr);
            m_conversations.push_back(conversation);
        }
    }

    /// In chronological order. Half of the traffic goes to a twentieth of the people.
    void addMessages()
    {
        BareStatement message(m_db,
            "INSERT INTO unified_message(id, conversation_id, direction, body, sender, ts, provider_msg_id, source, "
            "status, media_type, updated_at, deleted_at) VALUES(?,?,?,?,?,?,?,'local',?,?,?,?);");
        for (int index = 0; index < m_size.messages; ++index) {
            const bool busy = oneIn(2);
            const int count = std::max(1, m_size.conversations / (busy ? 20 : 1));
            Conversation& conversation = m_conversations[static_cast<std::size_t>(below(count))];
            conversation.lastTs = end - span + span / m_size.messages * index + below(1000);
            const bool outgoing = oneIn(3);
            const QByteArray providerId = "3EB0" + QByteArray::number(m_random(), 16) + QByteArray::number(index, 16);
            const auto row = [&](auto deletedAt) {
                message.run(QByteArray("wa:msg:" + providerId), conversation.id, QByteArray(outgoing ? "OUT" : "IN"),
                    body(), outgoing ? QByteArray("") : sender(conversation), conversation.lastTs, providerId,
                    qint64(below(5)),
                    QByteArray(oneIn(12)  ? "image"
                            : oneIn(5000) ? "video"
                                          : ""),
                    conversation.lastTs, deletedAt);
            };
            oneIn(50) ? row(conversation.lastTs) : row(nullptr);
        }
    }

    void addConversations()
    {
        BareStatement insert(m_db,
            "INSERT INTO unified_conversation(id, channel, account_id, external_id, title, contact_id, last_ts, "
            "unread, "
            "muted, archived_at, updated_at) VALUES(?,?,?,?,?,?,?,?,?,?,?);");
        for (const Conversation& conversation : m_conversations) {
            const auto row = [&](auto archivedAt) {
                insert.run(conversation.id, QByteArray(conversation.network->channel),
                    QByteArray(conversation.network->account), conversation.handle, word(), conversation.contact,
                    conversation.lastTs, qint64(oneIn(10) ? below(6) : 0), qint64(oneIn(20)), archivedAt, end);
            };
            oneIn(12) ? row(end) : row(nullptr);
        }
    }

    QByteArray sender(const Conversation& conversation)
    {
        constexpr int members = 40;
        const int person = conversation.isGroup() ? (conversation.firstMember + below(members)) % m_size.contacts
                                                  : conversation.person;
        return m_names[static_cast<std::size_t>(person)];
    }

    QByteArray word() { return words[static_cast<std::size_t>(below(words.size()))]; }

    QByteArray body()
    {
        QByteArray text = word();
        for (int count = below(oneIn(10) ? 60 : 14); count > 0; --count)
            text += ' ' + word();
        return text;
    }

    sqlite3* m_db;
    MirrorSize m_size;
    std::mt19937_64 m_random { 20'251'009 };
    std::vector<Conversation> m_conversations;
    std::vector<QByteArray> m_names; ///< of all people
};

/// Applies the real schema to the file and returns its text.
QString applySchemaTo(const QString& path)
{
    const QTemporaryDir folder;
    SystemScheduler scheduler;
    UserDefaults defaults(folder.filePath(u"defaults.ini"_s));
    NotificationCentre centre;
    LocalDB db(path, { resourceFolder(), {} }, scheduler, defaults, centre);
    return db.scalar("SELECT group_concat(sql) FROM (SELECT sql FROM sqlite_master ORDER BY name);")
        .value_or(QString());
}

}

QString resourceFolder()
{
    return QStringLiteral(CORVANE_SOURCE);
}

void makeMirror(const QString& path, const MirrorSize& size)
{
    const QString draft = path + u".part"_s;
    QFile::remove(draft);
    applySchemaTo(draft);
    sqlite3* db = nullptr;
    sqlite3_open(draft.toUtf8().constData(), &db);
    Generator(db, size).fill();
    sqlite3_exec(db, "PRAGMA wal_checkpoint(TRUNCATE);", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    QFile::remove(path);
    if (!QFile::rename(draft, path))
        qFatal("cannot write %s", qPrintable(path));
}

QString sharedMirror(const QString& folder)
{
    const QTemporaryDir scratch;
    QFile recipe(resourceFolder() + u"/Benchmarks/Mirror.cpp"_s);
    if (!recipe.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(recipe.fileName()));
    const QByteArray text = applySchemaTo(scratch.filePath(u"empty.db"_s)).toUtf8() + recipe.readAll();
    const QByteArray version = QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex().first(12);
    const QDir directory(folder);
    directory.mkpath(u"."_s);
    const QString path = directory.filePath(u"mirror-%1.db"_s.arg(QString::fromLatin1(version)));
    if (QFile::exists(path))
        return path;
    for (const QString& old : directory.entryList({ u"mirror-*.db*"_s }))
        QFile::remove(directory.filePath(old));
    makeMirror(path);
    return path;
}

}
