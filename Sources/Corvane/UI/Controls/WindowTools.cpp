#include "UI/Controls/WindowTools.h"

#include <QAccessible>
#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>

namespace corvane {

WindowTools::WindowTools(QObject* parent)
    : QObject(parent)
{
    qGuiApp->installEventFilter(this);
}

bool WindowTools::eventFilter(QObject* object, QEvent* event)
{
    const bool key = event->type() == QEvent::KeyPress;
    if ((key || event->type() == QEvent::MouseButtonPress) && object->isWindowType() && key != m_lastInputWasKey) {
        m_lastInputWasKey = key;
        Q_EMIT lastInputWasKeyChanged();
    }
    return QObject::eventFilter(object, event);
}

void WindowTools::copy(const QString& text) const
{
    QGuiApplication::clipboard()->setText(text);
}

void WindowTools::open(const QString& path) const
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void WindowTools::announce(QQuickItem* item) const
{
    if (!QAccessible::isActive() || !item)
        return;
    QAccessibleEvent event(item, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

}
