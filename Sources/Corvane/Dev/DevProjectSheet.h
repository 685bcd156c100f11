#pragma once

#include "Dev/DevDesk.h"

#include <QObject>

namespace corvane {

/// The sheet in which a project is made or changed. A save that fails keeps what was typed.
class DevProjectSheet : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool open READ isOpen NOTIFY changed)
    Q_PROPERTY(QString heading READ heading NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< what else happened at the last save; empty for nothing
    Q_PROPERTY(bool slugFixed READ slugFixed NOTIFY changed) ///< rows of its work name it
    Q_PROPERTY(QString slugHint READ slugHint NOTIFY changed)
    Q_PROPERTY(QString controlDirHint READ controlDirHint NOTIFY changed)
    Q_PROPERTY(QStringList statuses READ statuses CONSTANT)
    Q_PROPERTY(QString name READ projectDraftName WRITE setProjectDraftName NOTIFY changed)
    Q_PROPERTY(QString slug READ projectDraftSlug WRITE setProjectDraftSlug NOTIFY changed)
    Q_PROPERTY(QString goal READ projectDraftGoal WRITE setProjectDraftGoal NOTIFY changed)
    Q_PROPERTY(QString repoPath READ projectDraftRepoPath WRITE setProjectDraftRepoPath NOTIFY changed)
    Q_PROPERTY(QString controlDir READ projectDraftControlDir WRITE setProjectDraftControlDir NOTIFY changed)
    Q_PROPERTY(QString category READ projectDraftCategory WRITE setProjectDraftCategory NOTIFY changed)
    Q_PROPERTY(QString host READ projectDraftHost WRITE setProjectDraftHost NOTIFY changed)
    Q_PROPERTY(QString status READ projectDraftStatus WRITE setProjectDraftStatus NOTIFY changed)
    Q_PROPERTY(int priority READ projectDraftPriority WRITE setProjectDraftPriority NOTIFY changed)
public:
    DevProjectSheet(DevDesk& desk, QObject* parent);

    bool isOpen() const { return m_open; }
    QString heading() const;
    const QString& error() const { return m_error; }
    const QString& notice() const { return m_notice; }
    bool slugFixed() const { return !m_seen.slug.isEmpty(); }
    QString slugHint() const { return slugOf(m_draft); } ///< what is taken where none is typed
    QString controlDirHint() const;
    QStringList statuses() const;
    const QString& projectDraftName() const { return m_draft.name; }
    void setProjectDraftName(const QString& name) { edit(&OpsProjectRow::name, name); }
    const QString& projectDraftSlug() const { return m_draft.slug; }
    void setProjectDraftSlug(const QString& slug) { edit(&OpsProjectRow::slug, slug); }
    const QString& projectDraftGoal() const { return m_draft.goal; }
    void setProjectDraftGoal(const QString& goal) { edit(&OpsProjectRow::goal, goal); }
    const QString& projectDraftRepoPath() const { return m_draft.repoPath; }
    void setProjectDraftRepoPath(const QString& path) { edit(&OpsProjectRow::repoPath, path); }
    const QString& projectDraftControlDir() const { return m_draft.controlDir; }
    void setProjectDraftControlDir(const QString& path) { edit(&OpsProjectRow::controlDir, path); }
    const QString& projectDraftCategory() const { return m_draft.category; }
    void setProjectDraftCategory(const QString& category) { edit(&OpsProjectRow::category, category); }
    const QString& projectDraftHost() const { return m_draft.execHost; }
    void setProjectDraftHost(const QString& host) { edit(&OpsProjectRow::execHost, host); }
    const QString& projectDraftStatus() const { return m_draft.status; }
    void setProjectDraftStatus(const QString& status) { edit(&OpsProjectRow::status, status); }
    int projectDraftPriority() const { return m_draft.priority; }
    void setProjectDraftPriority(int priority);

    Q_INVOKABLE void beginNewProject();
    Q_INVOKABLE void beginEditProject(); ///< the chosen one
    Q_INVOKABLE void save();
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void dismissNotice();

Q_SIGNALS:
    void changed();
    void saved(const QString& id);

private:
    void begin(const OpsProjectRow& draft);
    void edit(QString OpsProjectRow::* field, const QString& value);
    QString slugOf(const OpsProjectRow& draft) const;
    QString refusal(const OpsProjectRow& draft) const;

    DevDesk& m_desk;
    bool m_open = false;
    OpsProjectRow m_seen; ///< as it was when the sheet opened
    OpsProjectRow m_draft;
    QString m_error;
    QString m_notice;
};

}
