#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Platform/SpeechRecogniser.h"

#include <QStringList>
#include <memory>

namespace corvane {

class ProcessLauncher;

/// A command line speech recogniser.
struct RecogniserProgram {
    QString executable; ///< empty if it is not installed
    bool wantsHeader = false; ///< input is a WAV file instead of raw samples
    std::function<QStringList(const SpeechJob& job, const QString& soundPath)> arguments;
    std::function<void(const QString& line, QList<HeardSpeech>& heard)> hear; ///< parses a line of its output
    std::function<QString(int code)> describeFailure; ///< the exit code as an error for the user
};

RecogniserProgram whisperProgram();
RecogniserProgram pocketSphinxProgram();

/// Runs one child per job. The sound is passed in memory that no other user can read and that is freed with the job.
class ChildRecogniser final : public SpeechRecogniser {
public:
    /// `launcher` outlives the recogniser.
    ChildRecogniser(ProcessLauncher& launcher, RecogniserProgram program);
    ~ChildRecogniser() override;

    bool isAvailable() const override { return !m_program->executable.isEmpty(); }
    void prewarm(const QString& model) override;
    QCoro::Task<Result<QList<HeardSpeech>>> recognise(SpeechJob job) override;

private:
    struct Run;

    ProcessLauncher& m_launcher;
    const std::shared_ptr<const RecogniserProgram> m_program; ///< shared with the running jobs
    QList<std::weak_ptr<Run>> m_running;
    BackgroundQueue m_reading;
};

}
