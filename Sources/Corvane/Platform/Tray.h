#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace corvane {

/// The icon in the desktop's panel. Where no panel shows such icons, `isShown` stays false.
class Tray : public QObject {
    Q_OBJECT
public:
    struct Item {
        QString id; ///< empty for a separator
        QString label;
        bool operator==(const Item&) const = default;
    };

    using QObject::QObject;

    virtual bool isShown() const = 0;
    virtual void setUnread(int count) = 0;
    virtual void setMenu(const QList<Item>& items) = 0;

Q_SIGNALS:
    void activated(); ///< the icon itself was pressed
    void itemChosen(const QString& id);
    void shownChanged();
};

}
