#pragma once

#include "CRM/PaneRow.h"
#include "Presentation/RowListModel.h"

namespace corvane {

/// A section of the contact pane: its rows, or the text shown if there are none. A long one starts with its newest
/// rows.
class PaneSection : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* rows READ rows CONSTANT) ///< of PaneRow
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    Q_PROPERTY(bool hasOlder READ hasOlder NOTIFY hasOlderChanged) ///< there are more rows than are shown
public:
    static constexpr qsizetype unlimited = -1;

    explicit PaneSection(const QString& emptyText, qsizetype firstRows = unlimited, QObject* parent = nullptr);

    HoldingListModel* rows() { return &m_rows; }
    const QString& emptyText() const { return m_emptyText; }
    bool hasOlder() const { return m_hasOlder; }
    qsizetype limit() const { return m_limit; } ///< of the rows that are shown
    bool shows(const QString& id) const;

    /// Newest first; more than `limit` rows mean that there are older ones.
    void assign(const QList<PaneRow>& rows);
    void startAnew() { m_limit = m_firstRows; } ///< takes effect at the next `assign`

    Q_INVOKABLE void showOlder();

Q_SIGNALS:
    void hasOlderChanged();
    void olderAsked(); ///< assign more rows

private:
    const QString m_emptyText;
    const qsizetype m_firstRows;
    qsizetype m_limit;
    bool m_hasOlder = false;
    RowListModel<PaneRow> m_rows;
};

}
