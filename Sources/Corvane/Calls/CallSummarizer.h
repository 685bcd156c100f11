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

    /// What the summary prompt gets: the transcript as it is, or notes of its pieces. A piece that fails stands there
    /// with its beginning.
    QCoro::Task<QString> summaryInput(QString transcript, CancelHandle cancel = {});

    /// A failure carries words for the user.
    QCoro::Task<Result<QString>> summarize(QString title, QString input, CancelHandle cancel = {});

    /// The Codex tool sends what it is asked elsewhere: no transcript goes there before the user said so. Nothing
    /// while they were not asked.
    std::optional<bool> codexAllowed() const;
    void allowCodex(bool allowed);

    /// Whether a summary now would need that answer first.
    QCoro::Task<bool> needsCodexAnswer();

private:
    QCoro::Task<Result<QString>> ask(QString instructions, QString prompt, CancelHandle cancel);

    LumoAI& m_ai;
    UserDefaults& m_defaults;
};

/// What a reader of the summary has to know of the recording.
QStringList summaryWarnings(const QString& captureMode);

}
