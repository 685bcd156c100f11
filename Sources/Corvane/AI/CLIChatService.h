#pragma once

#include "Foundation/Cancellation.h"

#include <QStringList>
#include <optional>
#include <qcoro/qcorotask.h>

namespace corvane {

class ToolRunner;

enum class CLIChatError { Failed, Unavailable };
QString describe(CLIChatError error, const QString& detail = {});

/// Possible paths of the Codex command line tool, in search order.
QStringList codexCandidates(const QString& home);

/// Text from the Codex command line tool, one child process per call, always in its read-only sandbox.
class CLIChatService {
public:
    /// `tools` outlives the service.
    CLIChatService(ToolRunner& tools, const QStringList& candidates);

    /// The first candidate that is executable, checked at each call; nothing if there is none.
    std::optional<QString> codexPath() const;

    /// The tool's answer, unchanged. There is no time limit; cancelling kills the tool and its children.
    QCoro::Task<Result<QString>> respond(QString instructions, QString prompt, CancelHandle cancel = {}) const;

private:
    ToolRunner& m_tools;
    const QStringList m_candidates;
};

}
