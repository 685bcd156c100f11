#pragma once

#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>

namespace corvane {

/// The icon in the desktop's panel. `isShown` stays false if no panel shows such icons.
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
    virtual void setWaiting(int count) = 0; ///< pending decisions: above 0 the icon asks for attention
    virtual void setRecording(bool recording) = 0; ///< a red dot, which replaces other marks
    virtual void setLabel(const QString& text) = 0; ///< beside the icon if the panel shows text, and in its tool tip
    virtual void setMenu(const QList<Item>& items) = 0;

Q_SIGNALS:
    /// The icon was clicked at this position on the screen; 0,0 if the panel does not tell.
    void activated(const QPoint& at);
    void itemChosen(const QString& id);
    void shownChanged();
};

}
