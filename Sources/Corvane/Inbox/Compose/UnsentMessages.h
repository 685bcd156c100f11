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

/// A message that could not be sent, as the screen shows it.
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

/// Direct messages until their engine confirms them: failed ones are kept, even across restarts, until they are resent
/// or discarded. Stored in a private file, like unfinished texts.
class UnsentMessages : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* rows READ rows CONSTANT) ///< of UnsentMessageItem
public:
    struct Message {
        QString contactId;
        QString platform;
        OutgoingMessage content; ///< owns its files
    };

    /// The references outlive the object.
    UnsentMessages(EngineManager& engine, Scheduler& scheduler, const QString& filePath);

    HoldingListModel* rows() { return &m_rows; } ///< of the shown contact
    void show(const QString& contactId);

    /// A message is handed to the account's engine. The engine's answer refers to the id.
    QString begin(const Message& message, const Account& account);
    void forget(const QString& id); ///< not handed over, or being resent: does not delete its files
    QList<OutgoingFile> files() const; ///< of all

    Q_INVOKABLE void retry(const QString& id); ///< a failed one
    Q_INVOKABLE void discard(const QString& id); ///< sent, or no longer wanted: deletes its files

Q_SIGNALS:
    void retried(const QString& id, const corvane::UnsentMessages::Message& message); ///< send it, then forget it

private:
    struct Entry {
        Message message;
        QUuid accountId;
        QString reason; ///< empty while it is being sent
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
    std::map<QString, Entry> m_entries; ///< by id, which starts with the time
    QString m_contactId;
    RowListModel<UnsentMessageItem> m_rows;
};

}
