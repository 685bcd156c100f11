#pragma once

#include "Foundation/Literals.h"
#include "Platform/Linux/Tray/TrayTypes.h"
#include "Platform/Tray.h"

#include <QDBusContext>
#include <QStringList>

namespace corvane {

/// The D-Bus interface of the tray icon's menu: one flat list under the root, which has the id 0.
class TrayMenu final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)
public:
    void setItems(const QList<Tray::Item>& items);

    uint version() const { return 3; }
    QString status() const { return u"normal"_s; }
    QString textDirection() const;
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    Q_SCRIPTABLE uint GetLayout(
        int parentId, int recursionDepth, const QStringList& propertyNames, corvane::MenuLayout& layout);
    Q_SCRIPTABLE QList<corvane::MenuProperties> GetGroupProperties(
        const QList<int>& ids, const QStringList& propertyNames);
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, const QString& name);
    Q_SCRIPTABLE void Event(int id, const QString& event, const QDBusVariant& data, uint timestamp);
    Q_SCRIPTABLE QList<int> EventGroup(const QList<corvane::MenuEvent>& events);
    Q_SCRIPTABLE bool AboutToShow(int id);
    Q_SCRIPTABLE QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& unknownIds);

Q_SIGNALS:
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parentId);
    Q_SCRIPTABLE void ItemActivationRequested(int id, uint timestamp);
    void itemChosen(const QString& itemId);

private:
    bool contains(int id) const;
    QVariantMap properties(int id, const QStringList& names) const;
    bool handleEvent(int id, const QString& event);

    QList<Tray::Item> m_items;
    int m_firstId = 1; ///< of m_items; ids of earlier menus are never reused
    uint m_revision = 1;
};

}
