#pragma once

#include "Browser/DevToolsConnection.h"
#include "Platform/ProcessLauncher.h"

namespace corvane {

/// Over the pipe of a browser that was started with one. A page is chosen by `setSession`.
class PipeConnection final : public DevToolsConnection {
    Q_OBJECT
public:
    using DevToolsConnection::DevToolsConnection;

    static constexpr char messageEnd = '\0';

    void setChild(std::shared_ptr<ChildProcess> child) { m_child = std::move(child); }
    void take(const OutputChunk& chunk); ///< what the child printed: whole messages
    void childEnded() { fail({}); }

protected:
    void write(const QByteArray& message) override;

private:
    std::shared_ptr<ChildProcess> m_child;
};

}
