#pragma once

#include "Desk/ResourceSnapshot.h"
#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"

namespace corvane {

class ResourceMonitor;

/// A process, as the panel shows it.
class ProcessItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString memory MEMBER memory)
    Q_PROPERTY(bool canEnd MEMBER canEnd)
public:
    QString id; ///< unique to this process: its number and its start
    QString name;
    QString detail; ///< its role and its number
    QString memory;
    bool canEnd = false;

    static constexpr const char* role = "process";
    const QString& key() const { return id; }
    bool operator==(const ProcessItem&) const = default;
};

/// The panel's tab "RAM": memory pressure, and the largest processes, which the user can ask to exit.
class ResourcesView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString memoryText READ memoryText NOTIFY changed)
    Q_PROPERTY(QString countsText READ countsText NOTIFY changed) ///< of running agents and engines
    Q_PROPERTY(QString warningTitle READ warningTitle NOTIFY changed) ///< both empty while memory is sufficient
    Q_PROPERTY(QString warningText READ warningText NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed) ///< instead of the list, before the first reading
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< the last error
    Q_PROPERTY(corvane::HoldingListModel* processes READ processes CONSTANT) ///< of ProcessItem
    Q_PROPERTY(QString asking READ asking NOTIFY changed) ///< the id of the process to confirm
    Q_PROPERTY(QString questionTitle READ questionTitle CONSTANT)
    Q_PROPERTY(QString questionText READ questionText NOTIFY changed)
public:
    explicit ResourcesView(QObject* parent = nullptr);

    void setMonitor(ResourceMonitor& monitor); ///< once; it outlives the view
    bool hasMonitor() const { return m_monitor != nullptr; }
    void setShown(bool shown); ///< the list is updated only while shown

    QString memoryText() const;
    QString countsText() const;
    QString warningTitle() const;
    QString warningText() const;
    QString emptyText() const;
    const QString& notice() const { return m_notice; }
    HoldingListModel* processes() { return &m_rows; }
    QString asking() const { return m_asking; }
    QString questionTitle() const { return u"Terminate process?"_s; }
    QString questionText() const;

    Q_INVOKABLE void ask(const QString& id); ///< does nothing for a protected process
    Q_INVOKABLE void terminate(); ///< the process being asked about
    Q_INVOKABLE bool stepBack(); ///< closes the question; false if there is none

Q_SIGNALS:
    void changed();

private:
    void follow();
    const ResourceProcessRow* find(const QString& id) const;

    ResourceMonitor* m_monitor = nullptr;
    ResourceSnapshot m_snapshot;
    RowListModel<ProcessItem> m_rows;
    QString m_asking;
    QString m_notice;
    bool m_shown = false;
};

}
