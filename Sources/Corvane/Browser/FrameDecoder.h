#pragma once

#include "Foundation/BackgroundQueue.h"

#include <QImage>
#include <QSizeF>
#include <optional>

namespace corvane {

/// A picture of the page.
struct BrowserFrame {
    QImage image; ///< null where the bytes are no picture
    QSizeF viewport; ///< in pixels of the page; empty where the browser did not say
};

/// Turns the browser's frames into pictures away from the main thread, one at a time. While one is being decoded only
/// the newest of those that came waits: a slow machine shows fewer frames, not older ones.
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
