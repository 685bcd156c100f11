#pragma once

#include "Foundation/Cancellation.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class LumoAI;
class UserDefaults;

/// Turns a call's transcript into a summary. A long one is summarised piece by piece, and then the notes of all pieces.
class CallSummarizer : public QObject {
    Q_OBJECT
public:
    /// Both outlive the object.
    CallSummarizer(LumoAI& ai, UserDefaults& defaults, QObject* parent = nullptr);

    /// The input of the summary prompt: the transcript, or notes on its pieces. A piece that fails is represented by
    /// its beginning.
    QCoro::Task<QString> summaryInput(QString transcript, CancelHandle cancel = {});

    /// Errors are for the user.
    QCoro::Task<Result<QString>> summarize(QString title, QString input, CancelHandle cancel = {});

    /// The Codex tool sends its input to another service: no transcript goes there before the user agrees. Nothing if
    /// they have not been asked.
    std::optional<bool> codexAllowed() const;
    void allowCodex(bool allowed);

    /// Whether a summary would need that answer first.
    QCoro::Task<bool> needsCodexAnswer();

private:
    QCoro::Task<Result<QString>> ask(QString instructions, QString prompt, CancelHandle cancel);

    LumoAI& m_ai;
    UserDefaults& m_defaults;
};

/// A note for readers of the summary about the recording.
QStringList summaryWarnings(const QString& captureMode);

}
