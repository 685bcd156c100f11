#include "UI/Controls/WaveformItem.h"

#include "Presentation/PlayTime.h"
#include "UI/Controls/MediaCache.h"

#include <QPainter>
#include <algorithm>

namespace corvane {

namespace {

constexpr double pitch = 4; ///< from bar to bar
constexpr double thickness = 2;

/// As many bars as fit: the peak of each part.
float loudest(const QList<float>& bars, qsizetype part, qsizetype count)
{
    const qsizetype from = part * bars.size() / count;
    const qsizetype to = std::clamp((part + 1) * bars.size() / count, from + 1, bars.size());
    return *std::max_element(bars.begin() + from, bars.begin() + to);
}

}

WaveformItem::WaveformItem(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &WaveformItem::lookChanged, this, [this] { update(); });
}

void WaveformItem::setPath(const QString& path)
{
    if (path == m_path)
        return;
    m_path = path;
    Q_EMIT pathChanged();
    ask();
}

QString WaveformItem::durationText() const
{
    return m_shape.durationMs > 0 ? playTime(m_shape.durationMs) : QString();
}

void WaveformItem::componentComplete()
{
    QQuickPaintedItem::componentComplete();
    ask();
}

void WaveformItem::ask()
{
    MediaCache* const cache = isComponentComplete() ? MediaCache::of(this) : nullptr;
    m_shape = {};
    m_problem.clear();
    m_request.reset();
    if (!cache || m_path.isEmpty())
        return;
    m_request = cache->shape(m_path, [this](const auto& shape) {
        m_shape = shape.value_or(SoundShape());
        m_problem = shape ? QString() : describe(shape.error());
        update();
        Q_EMIT statusChanged();
    });
}

void WaveformItem::paint(QPainter* painter)
{
    const qsizetype count = std::max<qsizetype>(1, qsizetype((width() + pitch - thickness) / pitch));
    const float most = m_shape.bars.isEmpty() ? 0 : *std::ranges::max_element(m_shape.bars);
    painter->setPen(Qt::NoPen);
    for (qsizetype i = 0; i < count; ++i) {
        // A quiet note is drawn as tall as a loud one; silence is a row of dots.
        const double level = most > 0.01F ? double(loudest(m_shape.bars, i, count) / most) : 0;
        const double tall = std::max(thickness, level * height());
        painter->setBrush(double(i) < m_progress * double(count) ? m_accent : m_ink);
        painter->drawRoundedRect(
            QRectF(double(i) * pitch, (height() - tall) / 2, thickness, tall), thickness / 2, thickness / 2);
    }
}

}
