#pragma once

#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Presentation/Choice.h"
#include "Store/Messages/InboxQueries.h"

#include <QObject>

namespace corvane {

class AccountStore;
class Desktop;
class EngineManager;
class ThreadView;
class UndoOffer;
struct UnifiedMsgRow;

/// An action on a message.
class MessageOffer {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(bool enabled MEMBER enabled)
    Q_PROPERTY(QString help MEMBER help)
public:
    QString id; ///< "react", "copy", "forward", "play", "transcribe", "speak", "open", "fetch" or "delete"
    QString label;
    bool enabled = false;
    QString help; ///< why it is not enabled

    bool operator==(const MessageOffer&) const = default;
};

/// The actions on a message of the open thread, and the call beside it. Errors are shown as the thread's error.
class MessageActions : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString callLabel READ callLabel CONSTANT)
    Q_PROPERTY(bool canCall READ canCall NOTIFY canCallChanged)
    Q_PROPERTY(QString noticeText READ noticeText NOTIFY noticeTextChanged) ///< the last action, for a moment
public:
    /// Everything outlives the object.
    struct Surroundings {
        EngineManager& engine;
        AccountStore& accounts;
        Desktop& desktop;
        Scheduler& scheduler;
        ThreadView& thread;
        UndoOffer& undo;
        std::function<QList<ContactRow>()> contacts; ///< the people of the list, in its order
    };

    explicit MessageActions(const Surroundings& surroundings, QObject* parent = nullptr);

    QString callLabel() const { return u"Call on WhatsApp (opens the WhatsApp app)"_s; }
    bool canCall() const { return m_canCall; }
    const QString& noticeText() const { return m_noticeText; }

    /// The actions that the message supports.
    Q_INVOKABLE QList<corvane::MessageOffer> actionsFor(const QString& messageId) const;

    Q_INVOKABLE void react(const QString& messageId, const QString& emoji);
    Q_INVOKABLE QString readableText(const QString& messageId) const; ///< for copying
    Q_INVOKABLE void deleteLocal(const QString& messageId); ///< can be undone
    Q_INVOKABLE QList<corvane::ContactChoice> forwardTargets() const;
    Q_INVOKABLE void forward(const QString& messageId, const QString& contactId);
    Q_INVOKABLE void fetchMedia(const QString& messageId); ///< downloads or retries
    Q_INVOKABLE void openMedia(const QString& messageId);
    Q_INVOKABLE void callOnWhatsApp();

Q_SIGNALS:
    void canCallChanged();
    void noticeTextChanged();
    void messagesChanged(); ///< what the list shows may have changed

private:
    bool forwardAsDraft(const QString& messageBody, const QString& conversationId);
    QString phone() const; ///< of the open contact, digits only; empty if there is none
    void updateCall();
    void setNotice(const QString& text);

    Surroundings m_surroundings;
    bool m_canCall = false;
    QString m_noticeText;
    std::unique_ptr<Timer> m_noticeEnd;
};

}
