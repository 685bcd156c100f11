#include "Platform/Linux/Decode/SeccompMediaDecoder.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Services.h"

#include <QCoreApplication>
#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>

namespace corvane {

namespace {

using Kind = DecodeOrder::Kind;

constexpr qint64 largestPicture = 64LL << 20;
constexpr qint64 largestSound = 1LL << 30;

QList<float> floatsOf(const QByteArray& bytes)
{
    const auto* const values = reinterpret_cast<const float*>(bytes.constData());
    return { values, values + bytes.size() / qsizetype(sizeof(float)) };
}

}

class SeccompMediaDecoder::Withdrawal final : public MediaDecoder::Request {
public:
    explicit Withdrawal(std::shared_ptr<Work> work)
        : m_work(std::move(work))
    {
    }
    ~Withdrawal() override { m_work->done = nullptr; }

private:
    std::shared_ptr<Work> m_work;
};

SeccompMediaDecoder::SeccompMediaDecoder(Scheduler& scheduler, QString executable, Limits limits)
    : m_scheduler(scheduler)
    , m_executable(std::move(executable))
    , m_limits(limits)
{
}

SeccompMediaDecoder::~SeccompMediaDecoder() = default;

template <typename Value, typename Convert>
MediaDecoder::Handle SeccompMediaDecoder::ask(
    const DecodeOrder& order, const QString& path, Answer<Value> answer, Convert convert)
{
    const auto done = [answer = std::move(answer), convert](const Outcome& outcome) {
        if (outcome)
            answer(convert(*outcome));
        else
            answer(std::unexpected(outcome.error()));
    };
    const auto work = std::make_shared<Work>(Work { order, path, done });
    // Sound comes first: playback must not run out while pictures are read.
    const bool isPlayed = order.kind == Kind::Sound && order.format.rate == SoundPiece::rate;
    m_waiting.insert(isPlayed ? m_waiting.begin() : m_waiting.end(), work);
    goOnSoon();
    return std::make_unique<Withdrawal>(work);
}

MediaDecoder::Handle SeccompMediaDecoder::picture(const QString& path, PictureBox box, Answer<Pixels> answer)
{
    return ask({ .kind = Kind::Picture, .box = box }, path, std::move(answer),
        [](const DecodeReply& reply) { return Pixels { { reply.head.width, reply.head.height }, reply.payload }; });
}

MediaDecoder::Handle SeccompMediaDecoder::shape(const QString& path, int bars, Answer<SoundShape> answer)
{
    return ask({ .kind = Kind::Shape, .count = bars }, path, std::move(answer),
        [](const DecodeReply& reply) { return SoundShape { reply.head.durationMs, floatsOf(reply.payload) }; });
}

MediaDecoder::Handle SeccompMediaDecoder::sound(const QString& path, SoundPosition position, Answer<SoundPiece> answer)
{
    return ask({ .kind = Kind::Sound,
                   .count = position.count,
                   .playing = position.playing,
                   .frame = position.frame,
                   .format = position.format },
        path, std::move(answer), [](const DecodeReply& reply) {
            return SoundPiece { floatsOf(reply.payload), reply.head.isLast != 0, reply.head.durationMs };
        });
}

std::expected<SeccompMediaDecoder::OpenFile, DecodeFailure> SeccompMediaDecoder::open(const Work& work)
{
    const QByteArray path = QFile::encodeName(work.path);
    struct stat status;
    // Opening a device may have side effects, so the type is checked first.
    if (::lstat(path.constData(), &status) != 0)
        return std::unexpected(DecodeFailure::Missing);
    if (!S_ISREG(status.st_mode))
        return std::unexpected(DecodeFailure::NotAFile);
    Descriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0)
        return std::unexpected(DecodeFailure::Missing);
    if (!S_ISREG(status.st_mode))
        return std::unexpected(DecodeFailure::NotAFile);
    if (status.st_size > (work.order.kind == Kind::Picture ? largestPicture : largestSound))
        return std::unexpected(DecodeFailure::TooLarge);
    const FileMark mark { status.st_dev, status.st_ino, status.st_size,
        status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec };
    return OpenFile { std::move(file), mark };
}

void SeccompMediaDecoder::goOnSoon()
{
    m_turn = m_scheduler.after(Milliseconds(0), [this] { goOn(); });
}

void SeccompMediaDecoder::goOn()
{
    if (m_current)
        return;
    while (!m_waiting.empty() && !m_waiting.front()->done)
        m_waiting.pop_front();
    if (m_waiting.empty()) {
        if (m_process)
            m_idle = m_scheduler.after(m_limits.idle, [this] { m_process.reset(); });
        return;
    }
    m_idle.reset();
    m_current = m_waiting.front();
    m_waiting.pop_front();
    auto file = open(*m_current);
    if (!file)
        return finish(std::unexpected(file.error()));
    if (const auto deadly = m_deadly.constFind(file->mark); deadly != m_deadly.cend())
        return finish(std::unexpected(*deadly));
    m_file = std::move(*file);
    if (!m_process)
        startProcess();
    else if (m_process->isReady())
        give();
}

void SeccompMediaDecoder::startProcess()
{
    auto process = DecoderProcess::start(m_executable,
        { [this](const DecodeReply& reply) { hearReply(reply); },
            [this] {
                loseProcess(DecodeFailure::Crashed);
            } });
    if (!process) {
        log(u"MediaDecoder: "_s + process.error().message);
        return finish(std::unexpected(DecodeFailure::Unavailable));
    }
    m_process = std::move(*process);
    m_timeout = m_scheduler.after(m_limits.start, [this] { loseProcess(DecodeFailure::TooSlow); });
}

void SeccompMediaDecoder::give()
{
    m_timeout = m_scheduler.after(m_limits.perFile, [this] {
        const auto late = m_current;
        m_process->hear(); // the answer may have arrived while this thread was busy
        if (late && m_current == late)
            loseProcess(DecodeFailure::TooSlow);
    });
    if (!m_process->give(m_current->order, m_file.descriptor))
        loseProcess(DecodeFailure::Crashed);
}

void SeccompMediaDecoder::hearReply(const DecodeReply& reply)
{
    if (reply.head.kind == DecodeHead::Kind::Ready) {
        if (m_current)
            give();
    } else if (reply.head.kind == DecodeHead::Kind::Failed) {
        finish(std::unexpected(DecodeFailure(reply.head.failure)));
    } else {
        finish(reply);
    }
}

void SeccompMediaDecoder::loseProcess(DecodeFailure failure)
{
    const bool wasReady = m_process->isReady();
    m_process.reset();
    if (!m_current)
        return;
    log(u"MediaDecoder: %1: %2"_s.arg(m_current->path, describe(failure)));
    if (wasReady)
        m_deadly.insert(m_file.mark, failure);
    finish(std::unexpected(wasReady ? failure : DecodeFailure::Unavailable));
}

void SeccompMediaDecoder::finish(const Outcome& outcome)
{
    const auto work = std::exchange(m_current, nullptr);
    m_file = {};
    m_timeout.reset();
    goOnSoon();
    if (const auto done = std::exchange(work->done, nullptr))
        done(outcome);
}

std::unique_ptr<MediaDecoder> makeMediaDecoder(Scheduler& scheduler)
{
    return std::make_unique<SeccompMediaDecoder>(
        scheduler, QCoreApplication::applicationFilePath(), SeccompMediaDecoder::Limits());
}

}
