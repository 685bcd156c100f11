#pragma once

#include "Foundation/Scheduler.h"
#include "Presentation/ListEdits.h"

#include <QAbstractListModel>
#include <QHash>
#include <QSet>

namespace corvane {

/// A list of gadgets: each property of the gadget is a role of that name, and so is the gadget itself.
class GadgetListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    /// `role` names the whole gadget, as a delegate requires it.
    GadgetListModel(const QMetaObject& gadget, const char* role, QObject* parent = nullptr);

    int count() const { return rowCount(); }
    QHash<int, QByteArray> roleNames() const override;
    QVariant data(const QModelIndex& index, int role) const override;

Q_SIGNALS:
    void countChanged();

protected:
    virtual const void* gadgetAt(int row) const = 0;

private:
    const QMetaObject& m_gadget;
    QByteArray m_role;
};

/// A model whose rows keep their place for a while after the user acted on them and they are gone, with the role
/// "held": until the pointer leaves the list or two seconds pass. So no other row's button moves under the pointer.
class HoldingListModel : public corvane::GadgetListModel {
    Q_OBJECT
    Q_PROPERTY(bool pointerInside READ pointerInside WRITE setPointerInside NOTIFY pointerInsideChanged)
public:
    /// Without a scheduler no row is held.
    HoldingListModel(const QMetaObject& gadget, const char* role, Scheduler* scheduler, QObject* parent = nullptr);
    ~HoldingListModel() override;

    QHash<int, QByteArray> roleNames() const override;
    QVariant data(const QModelIndex& index, int role) const override;

    /// Set by the list that shows the rows: whether the pointer is over it.
    bool pointerInside() const { return m_pointerInside; }
    void setPointerInside(bool inside);

    void hold(const QString& key); ///< the user acted on that row

Q_SIGNALS:
    void pointerInsideChanged();

protected:
    virtual QString keyAt(int row) const = 0;
    virtual void release() = 0; ///< shows the current rows

    bool mayHold() const { return m_pointerInside && !m_actedOn.isEmpty(); }
    bool mayHold(const QString& key) const { return m_pointerInside && m_actedOn.contains(key); }
    bool isHeld(const QString& key) const { return m_held.contains(key); }
    bool keep(const QString& key); ///< true the first time since the row is gone
    void comesBack(const QString& key) { m_held.remove(key); }
    void forgetHeld();

private:
    void startRelease();

    Scheduler* m_scheduler;
    bool m_pointerInside = false;
    QSet<QString> m_actedOn;
    QSet<QString> m_held; ///< gone, but still shown
    std::unique_ptr<Timer> m_release;
};

/// Rows that are replaced as a whole and updated by their differences: only what changed is removed, inserted, moved or
/// redrawn. `Row` is a gadget with `key()`, `operator==` and the name of its `role`.
template <typename Row> class RowListModel final : public HoldingListModel {
public:
    explicit RowListModel(QObject* parent = nullptr)
        : HoldingListModel(Row::staticMetaObject, Row::role, nullptr, parent)
    {
    }

    /// A model that holds rows; the scheduler outlives it.
    explicit RowListModel(Scheduler& scheduler, QObject* parent = nullptr)
        : HoldingListModel(Row::staticMetaObject, Row::role, &scheduler, parent)
    {
    }

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(m_rows.size()); }
    const QList<Row>& rows() const { return m_rows; }

    /// `leave` updates a row that is gone for the time it is held.
    void assign(const QList<Row>& given, const std::function<void(Row&)>& leave = {})
    {
        m_given = given;
        const QList<Row> rows = withHeld(given, leave);
        const qsizetype oldSize = m_rows.size();
        for (const ListEdit& edit : listEdits(keys(m_rows), keys(rows)))
            apply(edit, [&](qsizetype source) { return rows.at(source); });
        for (qsizetype i = 0; i < rows.size(); ++i)
            update(i, rows.at(i));
        if (m_rows.size() != oldSize)
            Q_EMIT countChanged();
    }

    /// The same with the rows of `keys`, where only those of `changed` are new or differ. Not for a model that holds
    /// rows.
    void assignChanged(const QStringList& keys, const QHash<QString, Row>& changed)
    {
        const qsizetype oldSize = m_rows.size();
        for (const ListEdit& edit : listEdits(this->keys(m_rows), keys))
            apply(edit, [&](qsizetype source) { return changed.value(keys.at(source)); });
        for (const Row& row : changed) {
            if (const qsizetype at = keys.indexOf(row.key()); at >= 0)
                update(at, row);
        }
        if (m_rows.size() != oldSize)
            Q_EMIT countChanged();
    }

protected:
    const void* gadgetAt(int row) const override { return &m_rows.at(row); }
    QString keyAt(int row) const override { return m_rows.at(row).key(); }
    void release() override
    {
        forgetHeld();
        assign(QList<Row>(m_given));
    }

private:
    /// Held rows stay behind their previous neighbour.
    QList<Row> withHeld(QList<Row> rows, const std::function<void(Row&)>& leave)
    {
        if (!mayHold())
            return rows;
        QHash<QString, qsizetype> places;
        for (qsizetype i = 0; i < rows.size(); ++i)
            places.insert(rows.at(i).key(), i);
        qsizetype inserted = 0;
        qsizetype next = 0;
        for (const Row& shown : std::as_const(m_rows)) {
            const auto place = places.constFind(shown.key());
            if (place != places.cend()) {
                comesBack(shown.key());
                next = *place + inserted + 1;
            } else if (mayHold(shown.key())) {
                Row kept = shown;
                if (keep(kept.key()) && leave)
                    leave(kept);
                rows.insert(next++, kept);
                ++inserted;
            }
        }
        return rows;
    }

    static QStringList keys(const QList<Row>& rows)
    {
        QStringList keys;
        keys.reserve(rows.size());
        for (const Row& row : rows)
            keys.append(row.key());
        return keys;
    }

    template <typename RowAt> void apply(const ListEdit& edit, RowAt rowAt)
    {
        const int first = int(edit.at);
        const int last = int(edit.at + edit.count - 1);
        switch (edit.kind) {
        case ListEdit::Kind::Remove:
            beginRemoveRows({}, first, last);
            m_rows.remove(edit.at, edit.count);
            endRemoveRows();
            break;
        case ListEdit::Kind::Insert:
            beginInsertRows({}, first, last);
            for (qsizetype i = 0; i < edit.count; ++i)
                m_rows.insert(edit.at + i, rowAt(edit.source + i));
            endInsertRows();
            break;
        case ListEdit::Kind::Move:
            beginMoveRows({}, first, first, {}, int(edit.to));
            m_rows.move(edit.at, edit.to > edit.at ? edit.to - 1 : edit.to);
            endMoveRows();
            break;
        }
    }

    void update(qsizetype at, const Row& row)
    {
        if (m_rows.at(at) == row && !isHeld(row.key()))
            return;
        m_rows[at] = row;
        Q_EMIT dataChanged(index(int(at)), index(int(at)));
    }

    QList<Row> m_rows; ///< as shown
    QList<Row> m_given;
};

}
