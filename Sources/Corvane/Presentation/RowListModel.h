#pragma once

#include "Presentation/ListEdits.h"

#include <QAbstractListModel>

namespace corvane {

/// A list of gadgets: each property of the gadget is a role of that name.
class GadgetListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    explicit GadgetListModel(const QMetaObject& gadget, QObject* parent = nullptr);

    int count() const { return rowCount(); }
    QHash<int, QByteArray> roleNames() const override;
    QVariant data(const QModelIndex& index, int role) const override;

Q_SIGNALS:
    void countChanged();

protected:
    virtual const void* gadgetAt(int row) const = 0;

private:
    const QMetaObject& m_gadget;
};

/// Rows that are replaced as a whole and shown by their differences: only what changed is removed, inserted,
/// moved or redrawn. `Row` is a gadget with `key()` and `operator==`.
template <typename Row> class RowListModel final : public GadgetListModel {
public:
    explicit RowListModel(QObject* parent = nullptr)
        : GadgetListModel(Row::staticMetaObject, parent)
    {
    }

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(m_rows.size()); }
    const QList<Row>& rows() const { return m_rows; }

    void assign(const QList<Row>& rows)
    {
        const qsizetype oldSize = m_rows.size();
        for (const ListEdit& edit : listEdits(keys(m_rows), keys(rows)))
            apply(edit, rows);
        updateChanged(rows);
        if (m_rows.size() != oldSize)
            Q_EMIT countChanged();
    }

protected:
    const void* gadgetAt(int row) const override { return &m_rows.at(row); }

private:
    static QStringList keys(const QList<Row>& rows)
    {
        QStringList keys;
        keys.reserve(rows.size());
        for (const Row& row : rows)
            keys.append(row.key());
        return keys;
    }

    void apply(const ListEdit& edit, const QList<Row>& rows)
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
                m_rows.insert(edit.at + i, rows.at(edit.source + i));
            endInsertRows();
            break;
        case ListEdit::Kind::Move:
            beginMoveRows({}, first, first, {}, int(edit.to));
            m_rows.move(edit.at, edit.to > edit.at ? edit.to - 1 : edit.to);
            endMoveRows();
            break;
        }
    }

    void updateChanged(const QList<Row>& rows)
    {
        for (int i = 0; i < int(rows.size()); ++i) {
            if (m_rows.at(i) == rows.at(i))
                continue;
            m_rows[i] = rows.at(i);
            Q_EMIT dataChanged(index(i), index(i));
        }
    }

    QList<Row> m_rows;
};

}
