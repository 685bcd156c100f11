#include "CallWaveItem.h"

#include <QPainter>
#include <algorithm>

namespace corvane {

namespace {

constexpr double pitch = 4; ///< from bar to bar
constexpr double thickness = 2;
constexpr double silence = 1; ///< its drawn height

/// The peak of one part, relative to the overall peak unless that is silence.
double levelOf(const QList<float>& bars, qsizetype part, qsizetype count)
{
    if (bars.isEmpty())
        return 0;
    const float most = *std::ranges::max_element(bars);
    const qsizetype from = part * bars.size() / count;
    const qsizetype to = std::clamp((part + 1) * bars.size() / count, from + 1, bars.size());
    return most > 0.01F ? double(*std::max_element(bars.begin() + from, bars.begin() + to) / most) : 0;
}

}

CallWaveItem::CallWaveItem(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &CallWaveItem::lookChanged, this, [this] { update(); });
}

void CallWaveItem::paint(QPainter* painter)
{
    const auto count = std::max<qsizetype>(1, qsizetype((width() + pitch - thickness) / pitch));
    const double axis = height() / 2;
    painter->setPen(Qt::NoPen);
    for (qsizetype i = 0; i < count; ++i) {
        const double up = std::max(silence, levelOf(m_above, i, count) * (axis - 1));
        const double down = m_below.isEmpty() ? up : std::max(silence, levelOf(m_below, i, count) * (axis - 1));
        painter->setBrush(double(i) < m_progress * double(count) ? m_accent : m_ink);
        painter->drawRoundedRect(
            QRectF(double(i) * pitch, axis - up, thickness, up + down), thickness / 2, thickness / 2);
    }
    painter->setBrush(m_markInk);
    for (const double mark : std::as_const(m_marks))
        painter->drawRect(QRectF(mark * (width() - thickness), 0, thickness, height()));
}

}
