#include "UI/Settings/QrItem.h"

#include <QPainter>
#include <qrcodegen/QrCode.hpp>

namespace corvane {

namespace {

QImage encode(const QString& text)
{
    if (text.isEmpty())
        return {};
    try {
        const auto code = qrcodegen::QrCode::encodeText(text.toUtf8().constData(), qrcodegen::QrCode::Ecc::LOW);
        QImage modules(code.getSize(), code.getSize(), QImage::Format_Mono);
        for (int y = 0; y < code.getSize(); ++y) {
            for (int x = 0; x < code.getSize(); ++x)
                modules.setPixel(x, y, code.getModule(x, y) ? 1 : 0);
        }
        return modules;
    } catch (const qrcodegen::data_too_long&) {
        return {};
    }
}

}

QrItem::QrItem(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
}

void QrItem::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    m_modules = encode(text);
    Q_EMIT textChanged();
    update();
}

void QrItem::setInk(const QColor& ink)
{
    if (ink == m_ink)
        return;
    m_ink = ink;
    Q_EMIT inkChanged();
    update();
}

void QrItem::paint(QPainter* painter)
{
    if (!valid())
        return;
    const int count = m_modules.width();
    const int side = int(std::min(width(), height())) / count;
    const int left = (int(width()) - side * count) / 2;
    const int top = (int(height()) - side * count) / 2;
    for (int y = 0; y < count; ++y) {
        for (int x = 0; x < count; ++x) {
            if (m_modules.pixelIndex(x, y) == 1)
                painter->fillRect(left + x * side, top + y * side, side, side, m_ink);
        }
    }
}

}
