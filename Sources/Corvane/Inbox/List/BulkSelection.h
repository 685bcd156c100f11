#pragma once

#include <QObject>
#include <QStringList>

namespace corvane {

/// Rows selected for a common action. Ids that the list no longer shows are removed.
class BulkSelection : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool active READ active NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed) ///< such as "3 selected"
public:
    explicit BulkSelection(QObject* parent = nullptr);

    const QStringList& ids() const { return m_ids; }
    bool active() const { return !m_ids.isEmpty(); }
    QString text() const;
    bool contains(const QString& contactId) const { return m_ids.contains(contactId); }

    /// The list's rows from top to bottom, and the open one, where the selection starts.
    void setListed(const QStringList& contactIds, const QString& openId = {});

    Q_INVOKABLE void set(const QString& contactId, bool checked);
    Q_INVOKABLE void toggle(const QString& contactId) { set(contactId, !contains(contactId)); }
    Q_INVOKABLE void add(const QString& contactId); ///< toggles it; the first one adds the open row, too
    Q_INVOKABLE void extendTo(const QString& contactId); ///< from the last selected or open row to this one
    Q_INVOKABLE void all();
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void changed();

private:
    void assign(const QStringList& contactIds);

    QStringList m_listed;
    QStringList m_ids;
    QString m_openId;
    QString m_anchor;
};

}
