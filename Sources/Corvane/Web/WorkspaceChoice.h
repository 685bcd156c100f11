#pragma once

#include <QList>
#include <QObject>

namespace corvane {

/// A workspace of the web account, as a menu or a list offers it.
class WorkspaceChoice {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(bool selected MEMBER selected)
public:
    QString id;
    QString name;
    bool selected = false;

    bool operator==(const WorkspaceChoice&) const = default;
};

}
