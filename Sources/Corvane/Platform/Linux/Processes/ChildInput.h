#pragma once

#include "Foundation/Result.h"
#include "Platform/Linux/Files/Descriptor.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <deque>
#include <memory>

namespace corvane {

/// The writing end of a child's standard input. What the pipe does not take is kept, in order, and written on
/// from the event loop when there is room. What the child has not read yet is remembered, also after the pipe is
/// closed.
class ChildInput {
public:
    explicit ChildInput(Descriptor pipe);

    /// All or nothing: fails where the pipe is closed, or more than 4 MiB would wait.
    Result<void> write(const QByteArray& bytes);

    bool isOpen() const { return m_pipe.isOpen(); }
    bool hasRead(const QByteArray& bytes); ///< see `ChildProcess`
    bool withdraw(const QByteArray& bytes);

    /// What waits for room stays here. The child may read on what is in the pipe.
    void close();
    void markEnded(); ///< the child reads no more

private:
    void flush();
    void forgetRead();
    int unreadBytes() const; ///< of those in the pipe

    Descriptor m_pipe;
    Descriptor m_closedPipe; ///< tells what is unread once the writing end is closed
    std::deque<QByteArray> m_written; ///< whose last byte is in the pipe, or was
    std::deque<QByteArray> m_waiting;
    qsizetype m_begun = 0; ///< of the first that waits, how much is in the pipe
    qsizetype m_waitingSize = 0;
    std::unique_ptr<QSocketNotifier> m_room; ///< enabled while something waits
    bool m_isReaderGone = false;
};

}
