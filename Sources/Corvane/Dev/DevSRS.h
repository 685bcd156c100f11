#pragma once

#include "Dev/DevDesk.h"
#include "Store/Work/DevRecords.h"

#include <QObject>

namespace corvane {

/// A section of a project's requirements, to read and to edit.
class DevSRSSection {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString shown MEMBER shown)
public:
    QString id;
    QString label;
    QString text; ///< as edited
    QString shown; ///< with a placeholder if there is none

    bool operator==(const DevSRSSection&) const = default;
};

/// What the project should do: created from a template, then edited section by section.
class DevSRS : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::DevSRSSection> sections READ sections NOTIFY changed)
    Q_PROPERTY(bool present READ present NOTIFY changed)
    Q_PROPERTY(bool canSeed READ canSeed NOTIFY changed)
    Q_PROPERTY(bool dirty READ dirty NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(QString facts READ facts NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(bool overtaken READ overtaken NOTIFY changed) ///< changed elsewhere in the meantime
public:
    DevSRS(DevDesk& desk, QObject* parent);

    void reload(); ///< keeps edits

    QList<DevSRSSection> sections() const;
    bool present() const { return !m_seen.updatedAt.isEmpty(); }
    bool canSeed() const { return m_desk.hasProject() && !present(); }
    bool dirty() const { return m_edited != m_seen; }
    QString emptyText() const;
    QString facts() const;
    const QString& error() const { return m_error; }
    bool overtaken() const { return m_overtaken; }

    Q_INVOKABLE void seed();
    Q_INVOKABLE void edit(const QString& section, const QString& text);
    Q_INVOKABLE void save(); ///< overwrites a newer text if it was overtaken
    Q_INVOKABLE void revert(); ///< to the stored text

Q_SIGNALS:
    void changed();

private:
    void show(const DevSRSRow& row);

    DevDesk& m_desk;
    DevSRSRow m_seen;
    DevSRSRow m_edited;
    bool m_overtaken = false;
    QString m_error;
};

}
