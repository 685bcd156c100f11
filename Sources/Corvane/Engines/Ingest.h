#pragma once

#include "Engines/RuntimeState.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>

namespace corvane {

class ContactsBridge;
class LocalDB;
class Notifier;

/// Whose engine reports.
struct EventSource {
    QString slug; ///< the account's name in rows; its id where the account was never started
    QString channel; ///< the raw word
    QString mediaFolder; ///< the name of its folder of media
};

/// Turns the events of engines into rows. Each statement stands alone, in the order in which the lines came.
class Ingest : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object.
    Ingest(LocalDB& db, Notifier& notifier, const QString& applicationSupport);

    void setContactsBridge(ContactsBridge* contacts);

    /// The thread that is open on the screen: its messages raise no banner.
    const QString& openContactId() const { return m_openContactId; }
    void setOpenContactId(const QString& contactId) { m_openContactId = contactId; }

    /// An event of unknown type, without a required key, or with one of the wrong type, changes nothing.
    void handle(const EventSource& source, const QString& type, const QJsonObject& event);

Q_SIGNALS:
    void inboxChanged(const QString& contactId); ///< what the inbox shows of this person; empty for anybody
    void draftAcknowledged();
    void mediaDownloadChanged(const QString& messageId, const std::optional<MediaDownloadStatus>& status);

private:
    void handleMessage(const EventSource& source, const QJsonObject& event);
    void handleAvatar(const EventSource& source, const QJsonObject& event);
    void handleMessageStatus(const EventSource& source, const QJsonObject& event);
    void handleSendAck(const EventSource& source, const QJsonObject& event);
    void handleReaction(const EventSource& source, const QJsonObject& event);
    void handleMedia(const EventSource& source, const QJsonObject& event);
    void handleContactName(const EventSource& source, const QJsonObject& event);
    void handlePhone(const EventSource& source, const QJsonObject& event);
    std::optional<QString> writeAddressBookPhoto(
        const QString& jid, const EventSource& source, const QByteArray& photo) const;

    LocalDB& m_db;
    Notifier& m_notifier;
    QString m_applicationSupport;
    QPointer<ContactsBridge> m_contacts;
    QString m_openContactId;
};

}
