#pragma once

#include "Browser/DevToolsConnection.h"
#include "Platform/ProcessLauncher.h"

namespace corvane {

/// Uses the pipe of a browser that was started with one. `setSession` selects the page.
class PipeConnection final : public DevToolsConnection {
    Q_OBJECT
public:
    using DevToolsConnection::DevToolsConnection;

    static constexpr char messageEnd = '\0';

    void setChild(std::shared_ptr<ChildProcess> child) { m_child = std::move(child); }
    void take(const OutputChunk& chunk); ///< output of the child: whole messages
    void childEnded() { fail({}); }

protected:
    void write(const QByteArray& message) override;

private:
    std::shared_ptr<ChildProcess> m_child;
};

}
