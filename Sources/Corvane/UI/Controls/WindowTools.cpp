#include "UI/Controls/WindowTools.h"

#include <QAccessible>
#include <QBuffer>
#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

#include <algorithm>

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

QList<QUrl> WindowTools::clipboardFiles() const
{
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    const QList<QUrl> urls = data ? data->urls() : QList<QUrl>();
    return std::ranges::all_of(urls, &QUrl::isLocalFile) ? urls : QList<QUrl>();
}

bool WindowTools::clipboardHoldsFiles() const
{
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    return !clipboardFiles().isEmpty() || (data && data->hasImage() && !data->hasText());
}

QByteArray WindowTools::clipboardPicture() const
{
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    QGuiApplication::clipboard()->image().save(&png, "PNG");
    return png.data();
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
