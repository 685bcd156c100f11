#include "Presentation/RowListModel.h"

#include <QMetaProperty>

namespace corvane {

namespace {

constexpr Milliseconds holdTime { 2000 };
constexpr int heldRole = Qt::UserRole - 1;
constexpr int gadgetRole = Qt::UserRole - 2;

}

GadgetListModel::GadgetListModel(const QMetaObject& gadget, const char* role, QObject* parent)
    : QAbstractListModel(parent)
    , m_gadget(gadget)
    , m_role(role)
{
}

QHash<int, QByteArray> GadgetListModel::roleNames() const
{
    QHash<int, QByteArray> names { { gadgetRole, m_role } };
    for (int i = 0; i < m_gadget.propertyCount(); ++i)
        names.insert(Qt::UserRole + i, m_gadget.property(i).name());
    return names;
}

QVariant GadgetListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (role == gadgetRole)
        return QVariant(m_gadget.metaType(), gadgetAt(index.row()));
    if (role < Qt::UserRole)
        return {};
    return m_gadget.property(role - Qt::UserRole).readOnGadget(gadgetAt(index.row()));
}

HoldingListModel::HoldingListModel(const QMetaObject& gadget, const char* role, Scheduler* scheduler, QObject* parent)
    : GadgetListModel(gadget, role, parent)
    , m_scheduler(scheduler)
{
}

HoldingListModel::~HoldingListModel() = default;

QHash<int, QByteArray> HoldingListModel::roleNames() const
{
    QHash<int, QByteArray> names = GadgetListModel::roleNames();
    names.insert(heldRole, "held");
    return names;
}

QVariant HoldingListModel::data(const QModelIndex& index, int role) const
{
    if (role == heldRole && checkIndex(index, CheckIndexOption::IndexIsValid))
        return isHeld(keyAt(index.row()));
    return GadgetListModel::data(index, role);
}

void HoldingListModel::setPointerInside(bool inside)
{
    if (inside == m_pointerInside)
        return;
    m_pointerInside = inside;
    Q_EMIT pointerInsideChanged();
    if (!inside && !m_held.isEmpty())
        release();
}

void HoldingListModel::hold(const QString& key)
{
    if (!m_scheduler)
        return;
    m_actedOn.insert(key);
    if (!m_held.isEmpty())
        startRelease(); // repeated clicks find the buttons in the same place
}

bool HoldingListModel::keep(const QString& key)
{
    if (m_held.contains(key))
        return false;
    m_held.insert(key);
    startRelease();
    return true;
}

void HoldingListModel::forgetHeld()
{
    m_actedOn.subtract(m_held);
    m_held.clear();
    m_release.reset();
}

void HoldingListModel::startRelease()
{
    m_release = m_scheduler->after(holdTime, [this] { release(); });
}

}
