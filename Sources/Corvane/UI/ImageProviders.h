#pragma once

#include <QQuickImageProvider>

namespace corvane {

/// "image://icon/{name}/{colour}": a stroke icon of the module, tinted. The colour is "#rrggbb" without "#".
class IconProvider : public QQuickImageProvider {
public:
    IconProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requested) override;
};

}
