#pragma once

#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/MediaDecoder.h"

#include <optional>

namespace corvane {

/// A request to the decoder process; the file's descriptor is sent along. Both ends are the same executable, so the
/// values are sent as they are in memory.
struct DecodeOrder {
    enum class Kind : qint32 { Picture, Shape, Sound };

    Kind kind = Kind::Picture;
    PictureBox box = {};
    qint32 count = 0; ///< bars, or frames of sound
    quint64 playing = 0;
    qint64 frame = 0;
    SampleFormat format = {}; ///< of sound
};

/// The header of an answer. `payload` bytes follow: pixels, bars or samples.
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

/// Whether an answer matches its order: a compromised child may send anything.
bool fitsOrder(const DecodeHead& head, const DecodeOrder& order);

/// Does not block on a non-blocking socket; false if the order could not be sent.
bool sendOrder(const Descriptor& socket, const DecodeOrder& order, const Descriptor& file);

/// Waits for the next order; nothing at the end of the stream.
std::optional<std::pair<DecodeOrder, Descriptor>> receiveOrder(const Descriptor& socket);

bool sendReply(const Descriptor& socket, const DecodeReply& reply); ///< blocks until everything is sent

}
