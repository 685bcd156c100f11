#include "ImageProviders.h"

#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace corvane {

IconProvider::IconProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QImage IconProvider::requestImage(const QString& id, QSize* size, const QSize& requested)
{
    const QString name = id.section(u'/', 0, 0);
    const QByteArray colour = "#" + id.section(u'/', 1, 1).toLatin1();
    const QString path = u":/qt/qml/Corvane/Icons/%1.svg"_s;
    QFile file(path.arg(name));
    // Channels are words of other programs, too; one that nobody knows has the sign of any message.
    if (name.startsWith(u"channel-") && !file.exists())
        file.setFileName(path.arg(u"hub-inbox"_s));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QSvgRenderer renderer(file.readAll().replace("currentColor", colour));
    QImage image(requested.isValid() ? requested : QSize(16, 16), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    *size = image.size();
    return image;
}

PhotoProvider::PhotoProvider()
    : QQuickImageProvider(QQuickImageProvider::Image, QQmlImageProviderBase::ForceAsynchronousImageLoading)
{
}

QImage PhotoProvider::requestImage(const QString& id, QSize* size, const QSize& requested)
{
    QImageReader reader(QUrl::fromPercentEncoding(id.section(u'/', 1).toUtf8()));
    reader.setAutoTransform(true);
    const QSize target = requested.isValid() ? requested : reader.size();
    const QSize natural = reader.size();
    if (natural.isValid() && !natural.isEmpty())
        reader.setScaledSize(natural.scaled(target, Qt::KeepAspectRatioByExpanding));
    const QImage picture = reader.read();
    if (picture.isNull() || target.isEmpty())
        return {};

    const QString corner = id.section(u'/', 0, 0);
    const double radius = corner == u"round" ? target.width() / 2.0 : corner.toDouble();
    QImage image(target, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSize covered = picture.size().scaled(target, Qt::KeepAspectRatioByExpanding);
    QTransform place = QTransform::fromTranslate(
        (target.width() - covered.width()) / 2.0, (target.height() - covered.height()) / 2.0);
    place.scale(double(covered.width()) / picture.width(), double(covered.height()) / picture.height());
    // A brush rather than a clip: the painter smooths the edge of a shape, not that of a clip.
    QBrush brush(picture);
    brush.setTransform(place);
    painter.setBrush(brush);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(image.rect(), radius, radius);
    *size = target;
    return image;
}

}
