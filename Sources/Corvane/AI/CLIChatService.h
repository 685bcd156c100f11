#pragma once

#include "Foundation/Cancellation.h"

#include <QStringList>
#include <optional>
#include <qcoro/qcorotask.h>

namespace corvane {

class ToolRunner;

enum class CLIChatError { Failed, Unavailable };
QString describe(CLIChatError error, const QString& detail = {});

/// Where the Codex command line tool may stand, in the order in which it is looked for.
QStringList codexCandidates(const QString& home);

/// Text from the Codex command line tool, one child process a call, always in its read-only sandbox.
class CLIChatService {
public:
    /// `tools` outlives the service.
    CLIChatService(ToolRunner& tools, const QStringList& candidates);

    /// The first candidate that may be executed, tested at each call; nothing where there is none.
    std::optional<QString> codexPath() const;

    /// The answer as the tool wrote it. Without a time limit; cancelling kills the tool and what it started.
    QCoro::Task<Result<QString>> respond(QString instructions, QString prompt, CancelHandle cancel = {}) const;

private:
    ToolRunner& m_tools;
    const QStringList m_candidates;
};

}
