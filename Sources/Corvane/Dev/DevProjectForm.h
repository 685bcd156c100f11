#pragma once

#include "Dev/DevDesk.h"
#include "Presentation/Form.h"

namespace corvane {

/// Creates or edits a project. The slug follows the name, and the folder the slug, until the user types another. A
/// failed save keeps what was typed.
class DevProjectForm final : public corvane::Form {
    Q_OBJECT
    Q_PROPERTY(QStringList statuses READ statuses CONSTANT)
    Q_PROPERTY(QString status READ status WRITE setStatus NOTIFY changed)
    Q_PROPERTY(int priority READ priority WRITE setPriority NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< side effects of the last save; empty if there were none
public:
    DevProjectForm(DevDesk& desk, QObject* parent); ///< the desk outlives it

    bool isOpen() const override { return m_isOpen; }
    QString title() const override;
    QString buttonLabel() const override;
    bool complete() const override; ///< has a name
    QString message() const override { return m_error; }
    QStringList statuses() const;
    const QString& status() const { return m_status; }
    void setStatus(const QString& status);
    int priority() const { return m_priority; }
    void setPriority(int priority);
    const QString& notice() const { return m_notice; }

    Q_INVOKABLE void beginNewProject();
    Q_INVOKABLE void beginEditProject(); ///< the selected one
    void submit() override;
    void close() override;
    Q_INVOKABLE void dismissNotice();

Q_SIGNALS:
    void saved(const QString& id);

private:
    void begin(const OpsProjectRow& row);
    void refuse(const QString& reason);
    OpsProjectRow draft() const;
    QString refusal(const OpsProjectRow& draft) const;
    bool hasSlug() const { return !m_seen.slug.isEmpty(); }

    DevDesk& m_desk;
    QString m_status;
    int m_priority = 0;
    OpsProjectRow m_seen; ///< the version that the form opened with
    QString m_error;
    QString m_notice;
    bool m_isOpen = false;
};

}
