#include "Platform/Linux/Audio/PulseCallAudio.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Services.h"

#include <QFile>

namespace corvane {

namespace {

constexpr Milliseconds answerTime { 3000 };
constexpr SoundFormat voice { .rate = 44'100, .channels = 1, .bitRate = 96'000 };
constexpr SoundFormat output { .rate = 48'000, .channels = 2, .bitRate = 128'000 };
const char* const streamName = "Call recording";

}

PulseCallAudio::PulseCallAudio(Scheduler& scheduler)
    : m_scheduler(scheduler)
{
}

PulseCallAudio::~PulseCallAudio() = default;

std::unique_ptr<TrackRecording> PulseCallAudio::recordMicrophone(const QString& path)
{
    const CaptureTarget target { .kind = CaptureTarget::Kind::Microphone, .follows = true, .name = streamName };
    return record({ path, target, voice, m_scheduler.monotonicMs() });
}

std::unique_ptr<TrackRecording> PulseCallAudio::recordSystem(const QString& path, const QString& binary, qint64 startMs)
{
    const auto kind = binary.isEmpty() ? CaptureTarget::Kind::Speakers : CaptureTarget::Kind::Application;
    const CaptureTarget target {
        .kind = kind, .binary = QFile::encodeName(binary), .follows = true, .name = streamName
    };
    return record({ path, target, output, startMs });
}

std::unique_ptr<TrackRecording> PulseCallAudio::record(const PulseTrack::Plan& plan)
{
    auto writer = M4aWriter::create(plan.path, plan.format);
    if (!writer) {
        log(u"CallAudio: %1: %2"_s.arg(plan.path, writer.error().message));
        return nullptr;
    }
    return std::make_unique<PulseTrack>(plan, std::move(*writer), m_scheduler, m_background);
}

template <typename Found> auto PulseCallAudio::answering(quint64 question, std::function<void(const Found&)> answer)
{
    return [this, question, answer = std::move(answer)](const Found& found) {
        const auto end = [this, question, answer, found] {
            if (const auto ended = m_questions.extract(question))
                answer(found);
        };
        QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
    };
}

void PulseCallAudio::findSystemAudio(std::function<void(const Result<void>&)> answer)
{
    const quint64 id = ++m_lastQuestion;
    const auto tell = answering(id, std::move(answer));
    Question& question = m_questions[id];
    question.timeout = m_scheduler.after(answerTime, [tell] { tell(failure(u"the sound server does not answer"_s)); });
    question.capture = std::make_unique<PulseCapture>(CaptureTarget { .kind = CaptureTarget::Kind::Speakers }, output,
        PulseCapture::Callbacks { .ready = [tell] { tell({}); },
            .sound = nullptr,
            .ended =
                [tell](PulseCapture::End, const QString& reason) {
                    tell(failure(reason));
                } });
}

void PulseCallAudio::findApplications(std::function<void(const QList<SoundApplication>&)> answer)
{
    const quint64 id = ++m_lastQuestion;
    const auto tell = answering(id, std::move(answer));
    Question& question = m_questions[id];
    question.timeout = m_scheduler.after(answerTime, [tell] { tell({}); });
    question.applications = std::make_unique<PulseApplications>(tell);
}

void PulseCallAudio::repair(const QString& path, TrackRecording::Done done)
{
    m_background.run<Result<void>>([path] { return M4aWriter::join(path); }, std::move(done));
}

std::unique_ptr<CallAudio> makeCallAudio(Scheduler& scheduler)
{
    return std::make_unique<PulseCallAudio>(scheduler);
}

}
