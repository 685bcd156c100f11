#pragma once

#include "Foundation/Literals.h"
#include "Store/Messages/ThreadQueries.h"
#include "Store/Work/LensQueries.h"
#include "Work/WorkModuleShell.h"

namespace corvane {

/// A person who waits for an answer.
class WaitingSeed {
    Q_GADGET
    Q_PROPERTY(QString contactId MEMBER contactId)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString channel MEMBER channel)
    Q_PROPERTY(QString snippet MEMBER snippet)
    Q_PROPERTY(QString waits MEMBER waits)
    Q_PROPERTY(bool late MEMBER late)
    Q_PROPERTY(QString work MEMBER work)
    Q_PROPERTY(QString initials MEMBER initials)
    Q_PROPERTY(int hue MEMBER hue)
    Q_PROPERTY(QString aloud MEMBER aloud)
public:
    QString contactId;
    QString name;
    QString channel;
    QString snippet;
    QString waits; ///< "waits since Tuesday"
    bool late = false; ///< for more than a day
    QString work; ///< "2 open, 1 bug"; empty for none
    QString initials;
    int hue = 0;
    QString aloud;

    static constexpr const char* role = "person";
    const QString& key() const { return contactId; }
    bool operator==(const WaitingSeed&) const = default;
};

/// Whether a program writes these messages: its address says so, or it sent many and never got an answer.
bool isAutomatic(const WaitingPerson& person);

/// A message of the thread next to the queue.
class QueueMessage {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString time MEMBER time)
    Q_PROPERTY(bool mine MEMBER mine)
public:
    QString id;
    QString body;
    QString time;
    bool mine = false;

    static constexpr const char* role = "message";
    const QString& key() const { return id; }
    bool operator==(const QueueMessage&) const = default;
};

/// Customers: who is waiting, longest first, and the work for each client.
class CXHub : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WorkModuleShell* shell READ shell CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* queue READ queue CONSTANT)
    Q_PROPERTY(QString queueText READ queueText NOTIFY changed)
    Q_PROPERTY(QString selected READ selected NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(QString facts READ facts NOTIFY changed)
    Q_PROPERTY(corvane::GadgetListModel* thread READ thread CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* items READ items CONSTANT)
    Q_PROPERTY(QString itemsText READ itemsText NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
public:
    explicit CXHub(const WorkServices& services, QObject* parent = nullptr);

    WorkModuleShell* shell() { return &m_shell; }
    GadgetListModel* queue() { return &m_queue; }
    const QList<WaitingSeed>& queueRows() const { return m_queue.rows(); }
    QString queueText() const;
    const QString& selected() const { return m_selected; }
    QString name() const;
    QString facts() const;
    GadgetListModel* thread() { return &m_thread; }
    GadgetListModel* items() { return &m_items; }
    QString itemsText() const;
    QString emptyTitle() const { return u"Nobody is waiting"_s; }
    QString emptyText() const { return u"People whose last message is not answered appear here, longest first."_s; }

    Q_INVOKABLE void select(const QString& contactId);
    Q_INVOKABLE void step(int by);
    Q_INVOKABLE void reply(); ///< opens the conversation in the inbox
    Q_INVOKABLE void newTicket(); ///< about the selected person

Q_SIGNALS:
    void changed();

private:
    void readPlaces();
    void readSelected();

    const WorkServices m_at;
    WorkModuleShell m_shell;
    QString m_selected;
    int m_automatic = 0; ///< senders that are programs
    QHash<QString, QString> m_contexts; ///< of a person's work, by contact
    RowListModel<WaitingSeed> m_queue;
    RowListModel<QueueMessage> m_thread;
    RowListModel<WorkItemSeed> m_items;
};

}
