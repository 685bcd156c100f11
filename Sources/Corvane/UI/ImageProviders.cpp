#include "ImageProviders.h"

#include "Foundation/Literals.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

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
    // Other programs may add channels; an unknown one gets the generic message icon.
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

}
