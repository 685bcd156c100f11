#include "Presentation/RowListModel.h"

#include <QMetaProperty>

namespace corvane {

GadgetListModel::GadgetListModel(const QMetaObject& gadget, QObject* parent)
    : QAbstractListModel(parent)
    , m_gadget(gadget)
{
}

QHash<int, QByteArray> GadgetListModel::roleNames() const
{
    QHash<int, QByteArray> names;
    for (int i = 0; i < m_gadget.propertyCount(); ++i)
        names.insert(Qt::UserRole + i, m_gadget.property(i).name());
    return names;
}

QVariant GadgetListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role < Qt::UserRole)
        return {};
    return m_gadget.property(role - Qt::UserRole).readOnGadget(gadgetAt(index.row()));
}

}
