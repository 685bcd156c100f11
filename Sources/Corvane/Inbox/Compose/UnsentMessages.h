#pragma once

#include "Foundation/Scheduler.h"
#include "Presentation/RowListModel.h"
#include "Store/Approvals/OutgoingMessage.h"

#include <QUuid>
#include <map>

namespace corvane {

class EngineManager;
enum class SendFate;
struct Account;

/// A message that did not go out, in the words of the screen.
class UnsentMessageItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString files MEMBER files)
    Q_PROPERTY(QString reason MEMBER reason)
public:
    QString id;
    QString body;
    QString files; ///< their names; empty for none
    QString reason;

    static constexpr const char* role = "message";
    const QString& key() const { return id; }
    bool operator==(const UnsentMessageItem&) const = default;
};

/// What a person sent directly, until its engine says that it went: what did not go out is kept, also over a restart,
/// until it is sent again or discarded. It stands in a private file, like what is still being typed.
class UnsentMessages : public QObject {
    Q_OBJECT
public:
    struct Message {
        QString contactId;
        QString platform;
        OutgoingMessage content; ///< with the files, which are its own
    };

    /// The references outlive the object.
    UnsentMessages(EngineManager& engine, Scheduler& scheduler, const QString& filePath);

    RowListModel<UnsentMessageItem>& rows() { return m_rows; } ///< of the contact that is shown
    void show(const QString& contactId);

    /// A message is handed to the account's engine. The id goes with it, and comes back with the engine's answer.
    QString begin(const Message& message, const Account& account);
    void forget(const QString& id); ///< it was not handed over, or is sent again: its files are somebody else's
    void discard(const QString& id); ///< it went out, or is wanted no more: with its files
    std::optional<Message> find(const QString& id) const; ///< one that did not go out
    QList<OutgoingFile> files() const; ///< of all

private:
    struct Entry {
        Message message;
        QUuid accountId;
        QString reason; ///< empty while it is on its way
        std::unique_ptr<Timer> limit;
    };

    void answer(const QString& id, SendFate fate, const QString& error);
    void awaitAnswer(const QString& id); ///< for two minutes from now
    void failThoseOf(const QUuid& accountId);
    void present();
    void load();
    void changed();

    EngineManager& m_engine;
    Scheduler& m_scheduler;
    const QString m_filePath;
    std::map<QString, Entry> m_entries; ///< by id, which begins with the time
    QString m_contactId;
    RowListModel<UnsentMessageItem> m_rows;
};

}
