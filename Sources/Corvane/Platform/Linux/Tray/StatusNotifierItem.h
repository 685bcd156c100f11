#pragma once

#include "Foundation/Literals.h"
#include "Platform/ApplicationId.h"
#include "Platform/Linux/Tray/TrayIcon.h"
#include "Platform/Linux/Tray/TrayTypes.h"

#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>

namespace corvane {

/// The icon's D-Bus interface for panels.
class StatusNotifierItem final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconName READ noName)
    Q_PROPERTY(corvane::TrayPixmaps IconPixmap READ icon)
    Q_PROPERTY(QString OverlayIconName READ noName)
    Q_PROPERTY(corvane::TrayPixmaps OverlayIconPixmap READ noIcon)
    Q_PROPERTY(QString AttentionIconName READ noName)
    Q_PROPERTY(corvane::TrayPixmaps AttentionIconPixmap READ icon)
    Q_PROPERTY(QString AttentionMovieName READ noName)
    Q_PROPERTY(corvane::TrayToolTip ToolTip READ toolTip)
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ label)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
public:
    void setUnread(int count) { show(count, m_waiting); }
    void setWaiting(int count) { show(m_unread, count); }
    void setRecording(bool recording);
    void setLabel(const QString& text);

    QString category() const { return u"Communications"_s; }
    QString id() const { return applicationId; }
    QString title() const { return u"Corvane"_s; }
    QString status() const;
    int windowId() const { return 0; }
    QString noName() const { return {}; }
    TrayPixmaps noIcon() const { return {}; }
    TrayPixmaps icon() const;
    TrayToolTip toolTip() const;
    const QString& label() const { return m_label; }
    bool itemIsMenu() const { return false; }
    QDBusObjectPath menu() const { return QDBusObjectPath(menuPath); }

    inline static const QString path = u"/StatusNotifierItem"_s;
    inline static const QString menuPath = u"/MenuBar"_s;

public Q_SLOTS:
    Q_SCRIPTABLE void Activate(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);
    Q_SCRIPTABLE void ContextMenu(int x, int y);
    Q_SCRIPTABLE void Scroll(int delta, const QString& orientation);
    Q_SCRIPTABLE void ProvideXdgActivationToken(const QString& token);

Q_SIGNALS:
    Q_SCRIPTABLE void NewTitle();
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewAttentionIcon();
    Q_SCRIPTABLE void NewOverlayIcon();
    Q_SCRIPTABLE void NewToolTip();
    Q_SCRIPTABLE void NewStatus(const QString& status);
    Q_SCRIPTABLE void XAyatanaNewLabel(const QString& label, const QString& guide);
    void activated(const QPoint& at);

private:
    TrayMark mark() const;
    void show(int unread, int waiting);

    int m_unread = 0;
    int m_waiting = 0;
    bool m_recording = false;
    QString m_label;
};

}
