#pragma once

#include "Foundation/Result.h"
#include "Platform/Linux/Files/Descriptor.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <deque>
#include <memory>

namespace corvane {

/// The write end of a child's standard input. What the pipe does not take is buffered, in order, and written from the
/// event loop when there is room. It knows what the child has not read yet, even after the pipe is closed.
class ChildInput {
public:
    explicit ChildInput(Descriptor pipe);

    /// All or nothing: fails if the pipe is closed, or if more than 4 MiB would be buffered.
    Result<void> write(const QByteArray& bytes);

    bool isOpen() const { return m_pipe.isOpen(); }
    bool hasRead(const QByteArray& bytes); ///< see `ChildProcess`
    bool withdraw(const QByteArray& bytes);

    /// Drops what is buffered. The child may still read what is in the pipe.
    void close();
    void markEnded(); ///< the child reads no more

private:
    void flush();
    void forgetRead();
    int unreadBytes() const; ///< of those in the pipe

    Descriptor m_pipe;
    Descriptor m_closedPipe; ///< tells what is unread after the write end was closed
    std::deque<QByteArray> m_written; ///< writes whose last byte is or was in the pipe
    std::deque<QByteArray> m_waiting;
    qsizetype m_begun = 0; ///< how much of the first buffered write is in the pipe
    qsizetype m_waitingSize = 0;
    std::unique_ptr<QSocketNotifier> m_room; ///< enabled while something is buffered
    bool m_isReaderGone = false;
};

}
