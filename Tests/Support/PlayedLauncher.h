#pragma once

#include "Platform/ProcessLauncher.h"

namespace corvane {

/// Starts no process: its only child prints what it is told to. For programs without a test framework.
class PlayedLauncher final : public ProcessLauncher, private ChildProcess {
public:
    void print(const QByteArray& lines) { m_handlers.output({ lines, nullptr }); } ///< complete lines only

    int marked(const QString&, Marked) override { return 0; }
    Result<std::shared_ptr<ChildProcess>> start(const ProcessSpec&, Handlers handlers) override
    {
        m_handlers = std::move(handlers);
        return std::shared_ptr<ChildProcess>(static_cast<ChildProcess*>(this), [](ChildProcess*) { });
    }

private:
    qint64 pid() const override { return 1; }
    bool isRunning() const override { return true; }
    Result<void> write(const QByteArray&) override { return {}; }
    bool isInputOpen() const override { return true; }
    bool hasRead(const QByteArray&) override { return true; }
    bool withdraw(const QByteArray&) override { return false; }
    void terminate() override { }

    Handlers m_handlers;
};

}
