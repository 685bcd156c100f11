#pragma once

#include "Dev/DevDesk.h"
#include "Foundation/BackgroundQueue.h"
#include "Presentation/RowListModel.h"

namespace corvane {

/// A condition that is good or not.
class DevHealthLine {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString value MEMBER value)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString tone MEMBER tone)
public:
    QString id;
    QString title;
    QString value;
    QString detail;
    QString tone; ///< "good", "warn" or empty

    static constexpr const char* role = "line";
    const QString& key() const { return id; }
    bool operator==(const DevHealthLine&) const = default;
};

/// What runs on this machine, and the state of the project.
class DevHealth : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* lines READ lines CONSTANT)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString safetyNote READ safetyNote CONSTANT)
public:
    DevHealth(DevDesk& desk, QObject* parent);

    Q_INVOKABLE void reload(); ///< counts on another thread

    GadgetListModel* lines() { return &m_lines; }
    const QList<DevHealthLine>& rows() const { return m_lines.rows(); }
    bool busy() const { return m_busy; }
    const QString& safetyNote() const { return m_desk.console.safetyNote; }

Q_SIGNALS:
    void changed();

private:
    void show(const QStringList& processes);

    DevDesk& m_desk;
    bool m_busy = false;
    RowListModel<DevHealthLine> m_lines;
    BackgroundQueue m_queue;
};

}
