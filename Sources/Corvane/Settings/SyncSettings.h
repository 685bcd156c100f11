#pragma once

#include "Foundation/Literals.h"

#include <QObject>

namespace corvane {

class LocalDB;
class SessionStore;

/// The last activity of one part of the sync.
class SyncHealthLine {
    Q_GADGET
    Q_PROPERTY(QString source MEMBER source)
    Q_PROPERTY(QString status MEMBER status)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString detail MEMBER detail)
public:
    QString source;
    QString status;
    QString kind; ///< "good", "busy" or "bad"
    QString detail;

    bool operator==(const SyncHealthLine&) const = default;
};

/// The account card and the state of the web mirror.
class SyncSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool signedIn READ signedIn NOTIFY changed)
    Q_PROPERTY(QString displayLine READ displayLine NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(QString stateKind READ stateKind NOTIFY changed) ///< "good", "busy", "bad" or "idle"
    Q_PROPERTY(QString actionLabel READ actionLabel NOTIFY changed)
    Q_PROPERTY(QList<corvane::SyncHealthLine> health READ health NOTIFY changed)
    Q_PROPERTY(QString emptyHealthText READ emptyHealthText CONSTANT)
    Q_PROPERTY(QString queueLabel READ queueLabel CONSTANT)
    Q_PROPERTY(QString queueHint READ queueHint CONSTANT)
    Q_PROPERTY(QString queuedText READ queuedText NOTIFY changed) ///< empty until a pull was queued
    Q_PROPERTY(QString engineText READ engineText NOTIFY changed) ///< which tool server was last started, and when
public:
    SyncSettings(SessionStore& session, LocalDB& db, QObject* parent = nullptr);

    bool signedIn() const;
    QString displayLine() const;
    QString stateText() const;
    QString stateKind() const;
    QString actionLabel() const;
    const QList<SyncHealthLine>& health() const { return m_health; }
    QString emptyHealthText() const
    {
        return u"Nothing has been synced yet. What each part of the sync last did appears here."_s;
    }
    QString queueLabel() const { return u"Queue a pull"_s; }
    QString queueHint() const { return u"Asks the tool server to fetch from the web now."_s; }
    const QString& queuedText() const { return m_queuedText; }
    const QString& engineText() const { return m_engineText; }

    Q_INVOKABLE void signInOrOut(); ///< the action of `actionLabel`
    Q_INVOKABLE void queuePull();
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    void changed();

private:
    SessionStore& m_session;
    LocalDB& m_db;
    QList<SyncHealthLine> m_health;
    QString m_queuedText;
    QString m_engineText;
};

}
