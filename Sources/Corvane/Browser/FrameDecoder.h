#pragma once

#include "Foundation/BackgroundQueue.h"

#include <QImage>
#include <QSizeF>
#include <optional>

namespace corvane {

/// A picture of the page.
struct BrowserFrame {
    QImage image; ///< null if the bytes are not a picture
    QSizeF viewport; ///< in pixels of the page; empty if unknown
};

/// Decodes the browser's frames on another thread, one at a time. Of the frames that arrive meanwhile only the newest
/// is kept: a slow machine shows fewer frames, not older ones.
class FrameDecoder {
public:
    explicit FrameDecoder(std::function<void(BrowserFrame)> show);

    void offer(const QByteArray& base64Jpeg, QSizeF viewport);

private:
    struct Waiting {
        QByteArray data;
        QSizeF viewport;
    };
    void decode(Waiting frame);

    std::function<void(BrowserFrame)> m_show;
    std::optional<Waiting> m_next;
    bool m_isBusy = false;
    BackgroundQueue m_queue;
};

}
