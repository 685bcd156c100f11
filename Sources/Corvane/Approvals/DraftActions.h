#pragma once

#include <QList>
#include <QMetaType>
#include <QObject>

namespace corvane {

class AccountStore;
class ApprovalsStore;
class EngineManager;
struct PendingDraft;

/// An action on a draft that waits for its engine or was placed.
class DraftAction {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString kind MEMBER kind)
public:
    QString id; ///< "start", "takeBack", "confirmSent" or "reject"
    QString label;
    QString kind; ///< button kind

    bool operator==(const DraftAction&) const = default;
};

/// A file of a draft.
class DraftFile {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString size MEMBER size)
    Q_PROPERTY(QString path MEMBER path)
public:
    QString name;
    QString size;
    QString path; ///< for opening it; empty if it no longer exists

    bool operator==(const DraftFile&) const = default;
};

/// The actions on a draft that was already decided, the same on every surface.
class DraftActions : public QObject {
    Q_OBJECT
public:
    /// All of it outlives the object.
    DraftActions(ApprovalsStore& approvals, EngineManager& engine, AccountStore& accounts, QObject* parent = nullptr);

    QList<DraftAction> actions(const PendingDraft& draft) const; ///< none while its verdict can be undone
    QList<DraftFile> files(const PendingDraft& draft) const;
    QString waitingReason(const PendingDraft& draft) const; ///< why an approved draft waits; empty if it does not
    void perform(const PendingDraft& draft, const QString& action); ///< does nothing while its verdict can be undone

Q_SIGNALS:
    void changed(); ///< the engine of a waiting draft started or stopped

private:
    ApprovalsStore& m_approvals;
    EngineManager& m_engine;
    AccountStore& m_accounts;
};

}
