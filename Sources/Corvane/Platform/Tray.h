#pragma once

#include <QList>
#include <QObject>
#include <QPoint>
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
    virtual void setWaiting(int count) = 0; ///< for a decision: while it is above 0 the icon asks for attention
    virtual void setRecording(bool recording) = 0; ///< a red dot, before any other mark
    virtual void setLabel(const QString& text) = 0; ///< beside the icon where the panel shows words, and in its tip
    virtual void setMenu(const QList<Item>& items) = 0;

Q_SIGNALS:
    /// The icon itself was pressed, there on the screen; 0,0 where the panel does not say.
    void activated(const QPoint& at);
    void itemChosen(const QString& id);
    void shownChanged();
};

}
