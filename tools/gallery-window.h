#pragma once

#include <QQuickItem>

namespace corvane {

/// The item of that name at or under another; null where there is none.
inline QQuickItem* itemUnder(QQuickItem* parent, const QString& name)
{
    if (parent->objectName() == name)
        return parent;
    for (QQuickItem* child : parent->childItems()) {
        if (QQuickItem* found = itemUnder(child, name))
            return found;
    }
    return nullptr;
}

}
