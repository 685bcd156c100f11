#include "Platform/Linux/Tray/StatusNotifierItem.h"

#include "Foundation/Literals.h"

#include <QtEndian>

namespace corvane {

namespace {

TrayPixmap trayPixmap(const QImage& drawn)
{
    const QImage image = drawn.convertToFormat(QImage::Format_ARGB32);
    const qsizetype pixels = qsizetype(image.width()) * image.height();
    QByteArray argb(pixels * 4, Qt::Uninitialized);
    qToBigEndian<quint32>(image.constBits(), pixels, argb.data());
    return { image.width(), image.height(), argb };
}

}

TrayMark StatusNotifierItem::mark() const
{
    if (m_recording)
        return TrayMark::Recording;
    return m_waiting > 0 ? TrayMark::Waiting : m_unread > 0 ? TrayMark::Unread : TrayMark::None;
}

void StatusNotifierItem::show(int unread, int waiting)
{
    if (unread == m_unread && waiting == m_waiting)
        return;
    const TrayMark markBefore = mark();
    const QString statusBefore = status();
    m_unread = unread;
    m_waiting = waiting;
    if (mark() != markBefore) {
        Q_EMIT NewIcon();
        Q_EMIT NewAttentionIcon();
    }
    if (status() != statusBefore)
        Q_EMIT NewStatus(status());
    Q_EMIT NewToolTip();
}

void StatusNotifierItem::setRecording(bool recording)
{
    if (std::exchange(m_recording, recording) == recording)
        return;
    Q_EMIT NewIcon();
    Q_EMIT NewAttentionIcon();
    Q_EMIT NewToolTip();
}

void StatusNotifierItem::setLabel(const QString& text)
{
    if (text == m_label)
        return;
    m_label = text;
    Q_EMIT XAyatanaNewLabel(m_label, m_label);
    Q_EMIT NewToolTip();
}

QString StatusNotifierItem::status() const
{
    return m_waiting > 0 ? u"NeedsAttention"_s : u"Active"_s;
}

TrayPixmaps StatusNotifierItem::icon() const
{
    TrayPixmaps pixmaps;
    for (const int size : { 16, 22, 32, 48 })
        pixmaps.append(trayPixmap(trayIcon(size, mark())));
    return pixmaps;
}

TrayToolTip StatusNotifierItem::toolTip() const
{
    QStringList words;
    if (m_recording)
        words.append(u"Recording a call"_s);
    if (m_waiting > 0)
        words.append(u"%1 waiting for your approval"_s.arg(m_waiting));
    if (m_unread > 0)
        words.append(u"%1 unread"_s.arg(m_unread));
    if (!m_label.isEmpty())
        words.append(m_label);
    return { {}, {}, title(), words.join(u" · "_s) };
}

void StatusNotifierItem::Activate(int x, int y)
{
    // Raising a window may take long; the panel gets its answer first.
    QMetaObject::invokeMethod(this, [this, at = QPoint(x, y)] { Q_EMIT activated(at); }, Qt::QueuedConnection);
}

void StatusNotifierItem::SecondaryActivate(int x, int y)
{
    Activate(x, y);
}

void StatusNotifierItem::ContextMenu(int, int) { } // panels show the menu themselves

void StatusNotifierItem::Scroll(int, const QString&) { }

void StatusNotifierItem::ProvideXdgActivationToken(const QString& token)
{
    qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

}
