#pragma once

#include <QQuickImageProvider>

namespace corvane {

/// "image://icon/{name}/{colour}": a stroke icon of the module, tinted. The colour is "#rrggbb" without "#".
class IconProvider : public QQuickImageProvider {
public:
    IconProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requested) override;
};

/// "image://photo/{radius}/{path}": a file of this machine cut to the asked size, with round corners. The
/// radius is in pixels of the asked size, or "round"; the path is percent-encoded. Decoded away from the main thread,
/// and never larger than asked; a file that is no picture gives an error, so that the caller's placeholder stays.
class PhotoProvider : public QQuickImageProvider {
public:
    PhotoProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requested) override;
};

}
