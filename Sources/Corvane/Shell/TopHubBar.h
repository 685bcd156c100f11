#pragma once

#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"

namespace corvane {

/// A hub in the bar.
class HubRow {
    Q_GADGET
    Q_PROPERTY(QString raw MEMBER raw)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString badge MEMBER badge)
    Q_PROPERTY(QString badgeAloud MEMBER badgeAloud)
    Q_PROPERTY(bool selected MEMBER selected)
    Q_PROPERTY(QString identifier MEMBER identifier)
    Q_PROPERTY(QString shortcut MEMBER shortcut)
public:
    QString raw;
    QString label;
    QString badge; ///< empty for none
    QString badgeAloud; ///< "3 unread"
    bool selected = false;
    QString identifier; ///< such as "topnav.inbox"
    QString shortcut; ///< such as "Ctrl+5"

    static constexpr const char* role = "hub";
    bool operator==(const HubRow&) const = default;
};

/// The bar's rows, one for each hub of the table.
class TopHubBar : public corvane::GadgetListModel {
    Q_OBJECT
    Q_PROPERTY(QString searchLabel READ searchLabel CONSTANT)
public:
    explicit TopHubBar(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;

    QString searchLabel() const { return u"Search or ask Lumo…"_s; }

    void setSelected(int index); ///< -1 while something covers the hubs
    void setUnreadTotal(int count) { setBadge(u"inbox"_s, count, u"unread"_s); }
    void setBadge(const QString& hub, int count, const QString& word); ///< the word names what is counted

protected:
    const void* gadgetAt(int row) const override { return &m_hubs.at(row); }

private:
    void change(int row, const std::function<void(HubRow&)>& edit);

    QList<HubRow> m_hubs;
};

/// The badge text: empty for 0 or less, the number up to 99, "99+" from 100.
QString unreadBadge(int count);

}
