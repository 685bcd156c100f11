#include "Platform/Linux/Tray/TrayIcon.h"

#include <QPainter>
#include <QPainterPath>

namespace corvane {

namespace {

constexpr QColor accent(0x2F, 0x5F, 0xE0);
constexpr QColor unreadDot(0xE5, 0x48, 0x3A);
constexpr QColor waitingDot(0xF2, 0xA9, 0x3B);

/// The head on a 64 by 64 grid: a round bubble whose tail is the beak.
QPainterPath head()
{
    QPainterPath skull;
    skull.addEllipse(QPointF(28, 32), 18, 18);
    QPainterPath beak(QPointF(32, 15));
    beak.cubicTo(QPointF(47, 17), QPointF(53, 30), QPointF(58, 47));
    beak.cubicTo(QPointF(50, 41), QPointF(44, 42), QPointF(40, 46));
    beak.closeSubpath();
    return skull.united(beak);
}

}

QImage trayIcon(int size, TrayMark mark)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 64.0, size / 64.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawRoundedRect(QRectF(0, 0, 64, 64), 15, 15);
    painter.setBrush(Qt::white);
    painter.drawPath(head());
    painter.setBrush(accent);
    painter.drawEllipse(QPointF(33, 27), 4, 4);
    if (mark != TrayMark::None) {
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.drawEllipse(QPointF(51, 13), 15, 15);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setBrush(mark == TrayMark::Waiting ? waitingDot : unreadDot);
        painter.drawEllipse(QPointF(51, 13), 11, 11);
        if (mark == TrayMark::Recording) {
            painter.setBrush(Qt::white);
            painter.drawEllipse(QPointF(51, 13), 8, 8);
            painter.setBrush(unreadDot);
            painter.drawEllipse(QPointF(51, 13), 5, 5);
        }
    }
    return image;
}

}
