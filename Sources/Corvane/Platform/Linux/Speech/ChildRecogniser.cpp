#include "Platform/Linux/Speech/ChildRecogniser.h"

#include "Foundation/Arrival.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Audio/WavWriter.h"
#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/Linux/Services.h"
#include "Platform/MediaDecoder.h"
#include "Platform/ProcessLauncher.h"

#include <QDir>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace corvane {

namespace {

using Outcome = Result<QList<HeardSpeech>>;

bool writeAll(const Descriptor& file, const char* bytes, qint64 count)
{
    while (count > 0) {
        const ssize_t written = ::write(file.number(), bytes, size_t(count));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        count -= written;
    }
    return true;
}

Result<Descriptor> inMemory(const QList<qint16>& samples, bool wantsHeader)
{
    Descriptor file(::memfd_create("corvane-speech", MFD_CLOEXEC));
    const qint64 size = samples.size() * qint64(sizeof(qint16));
    const QByteArray header = wantsHeader ? wavHeader(speechFormat.rate, quint32(size)) : QByteArray();
    if (!file.isOpen() || ::fchmod(file.number(), S_IRUSR | S_IWUSR) != 0
        || !writeAll(file, header.constData(), header.size())
        || !writeAll(file, reinterpret_cast<const char*>(samples.constData()), size))
        return failure(QString::fromLocal8Bit(std::strerror(errno)));
    return file;
}

}

struct ChildRecogniser::Run {
    Arrival<Outcome> outcome;
    Descriptor sound;
    QList<HeardSpeech> heard;
    std::function<void(qint64)> onHeard;
    std::shared_ptr<ChildProcess> child;

    void end(Outcome result)
    {
        if (!outcome.hasArrived())
            outcome.arrive(std::move(result));
    }

    void take(const QByteArray& lines, const RecogniserProgram& program)
    {
        for (const QByteArray& line : lines.split('\n'))
            program.hear(QString::fromUtf8(line).trimmed(), heard);
        if (!heard.isEmpty() && onHeard)
            onHeard(heard.last().endMs);
    }
};

ChildRecogniser::ChildRecogniser(ProcessLauncher& launcher, RecogniserProgram program)
    : m_launcher(launcher)
    , m_program(std::make_shared<const RecogniserProgram>(std::move(program)))
{
}

ChildRecogniser::~ChildRecogniser()
{
    for (const auto& each : std::as_const(m_running)) {
        if (const auto run = each.lock()) {
            run->child->terminate();
            run->end(cancelled());
        }
    }
}

void ChildRecogniser::prewarm(const QString& model)
{
    const auto read = [path = QFile::encodeName(model)] {
        const Descriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC));
        // It returns once the whole file is asked for, which takes its time on a busy disk.
        return file.isOpen() && ::posix_fadvise(file.number(), 0, 0, POSIX_FADV_WILLNEED) == 0;
    };
    m_reading.run<bool>(read, [](bool) { });
}

QCoro::Task<Outcome> ChildRecogniser::recognise(SpeechJob job)
{
    if (!isAvailable())
        co_return failure(u"The recogniser is not installed."_s);
    auto sound = inMemory(job.samples, m_program->wantsHeader);
    if (!sound)
        co_return std::unexpected(sound.error());
    job.samples.clear();

    const auto run = std::make_shared<Run>();
    run->sound = std::move(*sound);
    run->onHeard = job.onHeard;
    ProcessSpec spec;
    spec.executable = m_program->executable;
    spec.arguments = m_program->arguments(job, u"/proc/%1/fd/%2"_s.arg(::getpid()).arg(run->sound.number()));
    spec.workingDirectory = QDir::rootPath();
    spec.environment = QProcessEnvironment::systemEnvironment();
    const std::weak_ptr<Run> weak = run;
    ProcessLauncher::Handlers handlers;
    handlers.output = [weak, program = m_program](const OutputChunk& chunk) {
        if (const auto run = weak.lock())
            run->take(chunk.lines, *program);
    };
    handlers.exited = [weak, program = m_program](int code) {
        const auto run = weak.lock();
        if (!run)
            return;
        if (code != 0)
            log(u"%1 ended with %2"_s.arg(program->executable).arg(code));
        run->end(code == 0 ? Outcome(run->heard) : failure(program->describeFailure(code)));
    };
    const auto started = m_launcher.start(spec, std::move(handlers));
    if (!started)
        co_return std::unexpected(started.error());
    run->child = *started;
    m_running.removeIf([](const std::weak_ptr<Run>& each) { return each.expired(); });
    m_running.append(weak);
    const auto watch = job.cancel.onCancel([weak] {
        if (const auto run = weak.lock()) {
            run->child->terminate();
            run->end(cancelled());
        }
    });
    const auto arrival = run->outcome;
    co_return co_await arrival;
}

std::unique_ptr<SpeechRecogniser> makeModelRecogniser(ProcessLauncher& launcher)
{
    return std::make_unique<ChildRecogniser>(launcher, whisperProgram());
}

std::unique_ptr<SpeechRecogniser> makeBasicRecogniser(ProcessLauncher& launcher)
{
    return std::make_unique<ChildRecogniser>(launcher, pocketSphinxProgram());
}

}
