#pragma once

#include "CRM/PaneRow.h"
#include "Presentation/RowListModel.h"

namespace corvane {

/// A section of the contact pane: its rows, and what stands in it without any. One that grows long shows its newest
/// rows first.
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

    /// The newest first; with more than `limit` there are older ones.
    void assign(const QList<PaneRow>& rows);
    void startAnew() { m_limit = m_firstRows; } ///< from the next `assign` on

    Q_INVOKABLE void showOlder();

Q_SIGNALS:
    void hasOlderChanged();
    void olderAsked(); ///< more rows can be shown: assign them

private:
    const QString m_emptyText;
    const qsizetype m_firstRows;
    qsizetype m_limit;
    bool m_hasOlder = false;
    RowListModel<PaneRow> m_rows;
};

}
