#pragma once

#include <QList>
#include <QMetaType>
#include <QObject>

namespace corvane {

class AccountStore;
class ApprovalsStore;
class EngineManager;
struct PendingDraft;

/// What can be done with a draft that waits for its engine or was placed.
class DraftAction {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString kind MEMBER kind)
public:
    QString id; ///< "start", "takeBack", "confirmSent" or "reject"
    QString label;
    QString kind; ///< a button's

    bool operator==(const DraftAction&) const = default;
};

/// A file that goes out with a draft.
class DraftFile {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString size MEMBER size)
    Q_PROPERTY(QString path MEMBER path)
public:
    QString name;
    QString size;
    QString path; ///< to open it; empty where it is not there any more

    bool operator==(const DraftFile&) const = default;
};

/// The actions of a draft that a person decided already, the same on every surface.
class DraftActions : public QObject {
    Q_OBJECT
public:
    /// All of it outlives the object.
    DraftActions(ApprovalsStore& approvals, EngineManager& engine, AccountStore& accounts, QObject* parent = nullptr);

    QList<DraftAction> actions(const PendingDraft& draft) const; ///< none while a verdict on it can be undone
    QList<DraftFile> files(const PendingDraft& draft) const;
    QString waitingReason(const PendingDraft& draft) const; ///< why an approved one stays here; empty where it does not
    void perform(const PendingDraft& draft, const QString& action); ///< nothing while a verdict on it can be undone

Q_SIGNALS:
    void changed(); ///< an engine that a draft waits for came up or went down

private:
    ApprovalsStore& m_approvals;
    EngineManager& m_engine;
    AccountStore& m_accounts;
};

}
