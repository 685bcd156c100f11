#pragma once

#include "Engines/RuntimeState.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>

namespace corvane {

class ContactsBridge;
class LineGroup;
class LocalDB;
class Notifier;
struct IncomingMessage;

/// The engine that reports.
struct EventSource {
    QString slug; ///< the account's name in rows; its id if the account was never started
    QString channel; ///< the raw word
    QString mediaFolder; ///< the name of its media folder
    QStringList mediaPlaces = {}; ///< where its files may be
};

/// Turns engine events into rows. Signals and banners follow after the commit.
class Ingest : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object.
    Ingest(LocalDB& db, LineGroup& group, Notifier& notifier, const QString& applicationSupport);

    void setContactsBridge(ContactsBridge* contacts);

    /// The open thread: its messages do not raise banners.
    const QString& openContactId() const { return m_openContactId; }
    void setOpenContactId(const QString& contactId) { m_openContactId = contactId; }

    static bool storesRows(const QString& type); ///< whether events of this type are stored in the database

    /// Within a line of the group. False if a required key is missing or has the wrong type: nothing changes then.
    bool store(const EventSource& source, const QString& type, const QJsonObject& event);

Q_SIGNALS:
    void inboxChanged(const QString& contactId); ///< the inbox entry of this person changed; empty for anyone
    void featuresChanged(const QString& accountSlug);
    void mediaDownloadChanged(const QString& messageId, const std::optional<MediaDownloadStatus>& status);

private:
    using Handler = bool (Ingest::*)(const EventSource&, const QJsonObject&);
    static Handler handlerOf(const QString& type);
    void tellInboxChanged(const QString& contactId);
    void tellMessageChanged(const EventSource& source, const QString& providerMsgId);
    void tellMediaDownload(const QString& messageId, const std::optional<MediaDownloadStatus>& status);
    void announce(const EventSource& source, const IncomingMessage& message);
    bool handleMessage(const EventSource& source, const QJsonObject& event);
    bool handleAvatar(const EventSource& source, const QJsonObject& event);
    bool handleMessageStatus(const EventSource& source, const QJsonObject& event);
    bool handleSendAck(const EventSource& source, const QJsonObject& event);
    bool handleReaction(const EventSource& source, const QJsonObject& event);
    bool handleMedia(const EventSource& source, const QJsonObject& event);
    bool handleUnread(const EventSource& source, const QJsonObject& event);
    bool handleFeatures(const EventSource& source, const QJsonObject& event);
    bool handleContactName(const EventSource& source, const QJsonObject& event);
    bool handlePhone(const EventSource& source, const QJsonObject& event);
    std::optional<QString> writeAddressBookPhoto(
        const QString& jid, const EventSource& source, const QByteArray& photo) const;

    LocalDB& m_db;
    LineGroup& m_group;
    Notifier& m_notifier;
    QString m_applicationSupport;
    QPointer<ContactsBridge> m_contacts;
    QString m_openContactId;
};

}
