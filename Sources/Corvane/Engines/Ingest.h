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

/// Whose engine reports.
struct EventSource {
    QString slug; ///< the account's name in rows; its id where the account was never started
    QString channel; ///< the raw word
    QString mediaFolder; ///< the name of its folder of media
    QStringList mediaPlaces = {}; ///< where the files that it names may lie
};

/// Turns the events of engines into rows. What else they bring about, signals and banners, follows the commit.
class Ingest : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object.
    Ingest(LocalDB& db, LineGroup& group, Notifier& notifier, const QString& applicationSupport);

    void setContactsBridge(ContactsBridge* contacts);

    /// The thread that is open on the screen: its messages raise no banner.
    const QString& openContactId() const { return m_openContactId; }
    void setOpenContactId(const QString& contactId) { m_openContactId = contactId; }

    static bool storesRows(const QString& type); ///< whether events of this type reach the database

    /// Inside a line of the group. False where the event lacks a required key or has one of the wrong type: then it
    /// changes nothing.
    bool store(const EventSource& source, const QString& type, const QJsonObject& event);

Q_SIGNALS:
    void inboxChanged(const QString& contactId); ///< what the inbox shows of this person; empty for anybody
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
