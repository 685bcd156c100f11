#pragma once

#include "Foundation/Literals.h"
#include "Work/OpsAsks.h"

namespace corvane {

/// A project in the list.
class OpsProjectSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString group MEMBER group)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString goal MEMBER goal)
    Q_PROPERTY(QString facts MEMBER facts)
    Q_PROPERTY(QString latest MEMBER latest)
    Q_PROPERTY(int liveTabs MEMBER liveTabs)
    Q_PROPERTY(int downTabs MEMBER downTabs)
    Q_PROPERTY(int openAsks MEMBER openAsks)
    Q_PROPERTY(QString aloud MEMBER aloud)
public:
    QString id;
    QString group; ///< its `clientName`
    QString name;
    QString goal;
    QString facts;
    QString latest; ///< the latest report
    int liveTabs = 0;
    int downTabs = 0;
    int openAsks = 0;
    QString aloud;

    static constexpr const char* role = "project";
    const QString& key() const { return id; }
    bool operator==(const OpsProjectSeed&) const = default;
};

QString clientName(const OpsProjectRow& project); ///< whom it is for, by its category; "Other" without one

/// An agent's terminal.
class OpsTabSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString state MEMBER state)
    Q_PROPERTY(bool live MEMBER live)
public:
    QString id;
    QString name;
    QString detail;
    QString state; ///< "Live, heard of 2 minutes ago"
    bool live = false;

    static constexpr const char* role = "tab";
    const QString& key() const { return id; }
    bool operator==(const OpsTabSeed&) const = default;
};

/// An update or an order, as a line of a detail list.
class OpsLine {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString status MEMBER status)
public:
    QString id;
    QString title;
    QString detail;
    QString status;

    static constexpr const char* role = "line";
    const QString& key() const { return id; }
    bool operator==(const OpsLine&) const = default;
};

/// The projects that agents report to, and the open one.
class OpsProjects : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* projects READ projects CONSTANT)
    Q_PROPERTY(QString selected READ selected NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString goal READ goal NOTIFY changed)
    Q_PROPERTY(QString facts READ facts NOTIFY changed)
    Q_PROPERTY(corvane::GadgetListModel* tabs READ tabs CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* updates READ updates CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* orders READ orders CONSTANT)
    Q_PROPERTY(corvane::OpsAsks* asks READ asks CONSTANT)
    Q_PROPERTY(QString orderTab READ orderTab WRITE setOrderTab NOTIFY changed) ///< the recipient of an order
    Q_PROPERTY(QString orderTabName READ orderTabName NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
public:
    OpsProjects(const WorkServices& services, QObject* parent);

    /// Which projects are listed, in which order, and which is chosen before a person chooses one; none: all as stored.
    using Arrange = std::function<QList<OpsProjectRow>(const QList<OpsProjectRow>& all)>;
    void setArrangement(const Arrange& arrange) { m_arrange = arrange; }
    void reload();

    const OpsProjectRow& project() const { return m_selected; } ///< the open one
    GadgetListModel* projects() { return &m_projects; }
    const QList<OpsProjectSeed>& rows() const { return m_projects.rows(); }
    const QString& selected() const { return m_selected.id; }
    QString title() const;
    QString goal() const;
    QString facts() const;
    GadgetListModel* tabs() { return &m_tabs; }
    const QList<OpsTabSeed>& tabRows() const { return m_tabs.rows(); }
    GadgetListModel* updates() { return &m_updates; }
    GadgetListModel* orders() { return &m_orders; }
    OpsAsks* asks() { return &m_asks; }
    const QString& orderTab() const { return m_orderTab; }
    void setOrderTab(const QString& tab);
    QString orderTabName() const;
    const QString& error() const { return m_error; }
    QString emptyTitle() const { return u"No projects yet"_s; }
    QString emptyText() const { return u"Projects appear when an agent reports one."_s; }

    Q_INVOKABLE void select(const QString& id);
    Q_INVOKABLE bool order(const QString& text); ///< false if it was not saved: the text stays

Q_SIGNALS:
    void changed();
    void wrote();

private:
    void readSelected();

    const WorkServices m_at;
    Arrange m_arrange;
    OpsProjectRow m_selected;
    QString m_orderTab;
    QString m_error;
    OpsAsks m_asks;
    RowListModel<OpsProjectSeed> m_projects;
    RowListModel<OpsTabSeed> m_tabs;
    RowListModel<OpsLine> m_updates;
    RowListModel<OpsLine> m_orders;
};

}
