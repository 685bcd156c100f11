#include "Platform/Linux/Decode/DecodeChild.h"

#include "Platform/Linux/Decode/DecodeMessages.h"
#include "Platform/Linux/Decode/PictureFile.h"
#include "Platform/Linux/Decode/Sandbox.h"
#include "Platform/Linux/Decode/SoundFile.h"

#include <QCoreApplication>
#include <QFile>
#include <algorithm>
#include <csignal>
#include <new>
#include <sys/prctl.h>
#include <unistd.h>

namespace corvane {

namespace {

using Kind = DecodeOrder::Kind;

/// The last sound of each format stays open, so that the next piece continues where the last one ended.
struct OpenSound {
    quint64 playing = 0;
    std::unique_ptr<SoundFile> file;
};

/// A transcription does not close the sound that is playing.
struct OpenSounds {
    OpenSound played;
    OpenSound other;
};

constexpr SampleFormat playedFormat { SoundPiece::rate, SoundPiece::channels };

template <typename Value> QByteArray bytesOf(const QList<Value>& values)
{
    return { reinterpret_cast<const char*>(values.constData()), values.size() * qsizetype(sizeof(Value)) };
}

DecodeReply failed(DecodeFailure failure)
{
    DecodeReply reply;
    reply.head.kind = DecodeHead::Kind::Failed;
    reply.head.failure = qint32(failure);
    return reply;
}

DecodeReply done(const QByteArray& payload)
{
    DecodeReply reply;
    reply.head.kind = DecodeHead::Kind::Done;
    reply.head.payload = quint32(payload.size());
    reply.payload = payload;
    return reply;
}

DecodeReply ofPicture(const DecodeOrder& order, const Descriptor& descriptor)
{
    QFile file;
    file.open(descriptor.number(), QIODevice::ReadOnly);
    const auto pixels = readPicture(file, order.box);
    if (!pixels)
        return failed(pixels.error());
    DecodeReply reply = done(pixels->bytes);
    reply.head.width = pixels->size.width();
    reply.head.height = pixels->size.height();
    return reply;
}

DecodeReply ofShape(const DecodeOrder& order, Descriptor descriptor)
{
    const auto sound = SoundFile::open(std::move(descriptor), playedFormat);
    if (!sound)
        return failed(DecodeFailure::Damaged);
    const SoundShape shape = shapeOf(**sound, order.count);
    DecodeReply reply = done(bytesOf(shape.bars));
    reply.head.durationMs = shape.durationMs;
    return reply;
}

DecodeReply ofSound(const DecodeOrder& order, Descriptor descriptor, OpenSound& open)
{
    if (!open.file || open.playing != order.playing || open.file->format() != order.format) {
        auto sound = SoundFile::open(std::move(descriptor), order.format);
        if (!sound)
            return failed(DecodeFailure::Damaged);
        open = { order.playing, std::move(*sound) };
    }
    if (open.file->frame() != order.frame)
        open.file->seek(order.frame);
    QList<float> samples(qsizetype(order.count) * order.format.channels);
    const size_t count = open.file->read({ samples.data(), size_t(samples.size()) });
    const bool isLast = count < size_t(samples.size());
    samples.resize(qsizetype(count));
    DecodeReply reply = done(bytesOf(samples));
    reply.head.isLast = isLast ? 1 : 0;
    reply.head.durationMs = open.file->durationMs();
    return reply;
}

DecodeReply answer(const DecodeOrder& order, Descriptor descriptor, OpenSounds& sounds)
{
    try {
        switch (order.kind) {
        case Kind::Picture:
            return ofPicture(order, descriptor);
        case Kind::Shape:
            return ofShape(order, std::move(descriptor));
        case Kind::Sound:
            return ofSound(order, std::move(descriptor), order.format == playedFormat ? sounds.played : sounds.other);
        }
    } catch (const std::bad_alloc&) {
        return failed(DecodeFailure::TooManyPixels);
    }
    return failed(DecodeFailure::UnknownFormat);
}

}

int runDecodeChild()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Its threads need pipes, which the sandbox refuses.
    qputenv("QT_NO_GLIB", "1");
    // Image plugins are found through the application's folders.
    char name[] = "corvane";
    char* arguments[] { name, nullptr };
    int count = 1;
    const QCoreApplication application(count, arguments);
    loadPictureFormats();
    if (!enterSandbox())
        return 1;
    const Descriptor socket(STDIN_FILENO);
    OpenSounds sounds;
    if (!sendReply(socket, {}))
        return 1;
    while (auto next = receiveOrder(socket)) {
        if (!sendReply(socket, answer(next->first, std::move(next->second), sounds)))
            break;
    }
    // Other exit handlers would need forbidden system calls.
    ::_exit(0);
}

}
