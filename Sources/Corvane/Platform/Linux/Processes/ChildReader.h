#pragma once

#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/ProcessLauncher.h"

#include <QObject>
#include <thread>

namespace corvane {

/// One thread that reads the output of all children and notices their exits. It owns descriptors and no state of the
/// program; results are delivered on the thread that created it.
class ChildReader {
public:
    struct Receiver {
        std::function<void(quint64 id, OutputChunk)> output;
        std::function<void(quint64 id, int code)> ended; ///< once, after the child's last chunk
    };

    explicit ChildReader(Receiver receiver);
    ~ChildReader(); ///< nothing is delivered afterwards

    /// `output` may be closed; `handle` becomes readable when the process exits, and is reaped here.
    void add(quint64 id, Descriptor output, std::shared_ptr<const Descriptor> handle, char lineEnd);

private:
    class Hold;
    class Orders;
    class Loop;

    QObject m_home;
    std::shared_ptr<Orders> m_orders;
    std::unique_ptr<Loop> m_loop;
    std::thread m_thread;
};

}
