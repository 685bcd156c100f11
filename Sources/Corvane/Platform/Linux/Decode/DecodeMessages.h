#pragma once

#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/MediaDecoder.h"

#include <optional>

namespace corvane {

/// What the decoder's child is asked; the file's descriptor travels with it. Both ends are one executable, so the
/// values go over the socket as they stand in memory.
struct DecodeOrder {
    enum class Kind : qint32 { Picture, Shape, Sound };

    Kind kind = Kind::Picture;
    PictureBox box = {};
    qint32 count = 0; ///< bars, or moments of sound
    quint64 playing = 0;
    qint64 frame = 0;
    SampleFormat format = {}; ///< of sound
};

/// The head of an answer. `payload` bytes follow: pixels, bars or samples.
struct DecodeHead {
    enum class Kind : qint32 { Ready, Done, Failed };

    Kind kind = Kind::Ready;
    qint32 failure = 0; ///< a DecodeFailure
    qint32 width = 0;
    qint32 height = 0;
    qint64 durationMs = 0;
    quint32 isLast = 0;
    quint32 payload = 0;
};

struct DecodeReply {
    DecodeHead head;
    QByteArray payload;
};

/// Whether an answer fits its order: a child that was taken over may say anything.
bool fitsOrder(const DecodeHead& head, const DecodeOrder& order);

/// Never waits where the socket does not block; false where the order did not get out.
bool sendOrder(const Descriptor& socket, const DecodeOrder& order, const Descriptor& file);

/// Waits for the next order; nothing at the end of the socket.
std::optional<std::pair<DecodeOrder, Descriptor>> receiveOrder(const Descriptor& socket);

bool sendReply(const Descriptor& socket, const DecodeReply& reply); ///< waits until all of it is gone

}
