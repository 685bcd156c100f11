#pragma once

#include "Platform/SpeechRecogniser.h"

#include <QStringList>
#include <memory>

namespace corvane {

class ProcessLauncher;

/// A recogniser that is a command line tool.
struct RecogniserProgram {
    QString executable; ///< empty where it is not installed
    bool wantsHeader = false; ///< the sound is a WAV file; else the samples alone
    std::function<QStringList(const SpeechJob& job, const QString& soundPath)> arguments;
    std::function<void(const QString& line, QList<HeardSpeech>& heard)> hear; ///< takes in a line of its output
    std::function<QString(int code)> describeFailure; ///< the exit code in words for the user
};

RecogniserProgram whisperProgram();
RecogniserProgram pocketSphinxProgram();

/// Runs one child a job. The sound reaches it in memory that no other user can read and that goes with the job.
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
    const std::shared_ptr<const RecogniserProgram> m_program; ///< shared with the runs
    QList<std::weak_ptr<Run>> m_running;
};

}
