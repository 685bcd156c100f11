#pragma once

#include "Desk/ResourceSnapshot.h"
#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"

namespace corvane {

class ResourceMonitor;

/// A process in the words of the panel.
class ProcessItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString memory MEMBER memory)
    Q_PROPERTY(bool canEnd MEMBER canEnd)
public:
    QString id; ///< of this process alone: its number and its start
    QString name;
    QString detail; ///< what it is, and its number
    QString memory;
    bool canEnd = false;

    static constexpr const char* role = "process";
    const QString& key() const { return id; }
    bool operator==(const ProcessItem&) const = default;
};

/// The panel's tab "RAM": how short memory is, and the processes that take it, each of which can be asked to end.
class ResourcesView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString memoryText READ memoryText NOTIFY changed)
    Q_PROPERTY(QString countsText READ countsText NOTIFY changed) ///< of what runs here of agents and engines
    Q_PROPERTY(QString warningTitle READ warningTitle NOTIFY changed) ///< both empty while memory is not short
    Q_PROPERTY(QString warningText READ warningText NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed) ///< in place of the list, before the first reading
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< what went wrong last
    Q_PROPERTY(corvane::HoldingListModel* processes READ processes CONSTANT) ///< of ProcessItem
    Q_PROPERTY(QString asking READ asking NOTIFY changed) ///< the id of the process that is asked about
    Q_PROPERTY(QString questionTitle READ questionTitle CONSTANT)
    Q_PROPERTY(QString questionText READ questionText NOTIFY changed)
public:
    explicit ResourcesView(QObject* parent = nullptr);

    void setMonitor(ResourceMonitor& monitor); ///< once; it outlives the view
    bool hasMonitor() const { return m_monitor != nullptr; }
    void setShown(bool shown); ///< the list follows the monitor only while someone looks

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

    Q_INVOKABLE void ask(const QString& id); ///< nothing for a process that is protected
    Q_INVOKABLE void terminate(); ///< the one that is asked about
    Q_INVOKABLE bool stepBack(); ///< from the question; false where none is asked

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
