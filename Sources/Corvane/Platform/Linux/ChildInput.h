#pragma once

#include "Foundation/Result.h"
#include "Platform/Linux/Descriptor.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <memory>

namespace corvane {

/// The writing end of a child's standard input. What the pipe does not take is kept, in order, and written on
/// from the event loop when there is room.
class ChildInput {
public:
    explicit ChildInput(Descriptor pipe);

    /// All or nothing: fails where the pipe is closed, or more than 4 MiB would wait.
    Result<void> write(const QByteArray& bytes);

    /// Drops what still waits.
    void close();

private:
    void flush();

    Descriptor m_pipe;
    QByteArray m_waiting;
    std::unique_ptr<QSocketNotifier> m_room; ///< enabled while something waits
};

}
