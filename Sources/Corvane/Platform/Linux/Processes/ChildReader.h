#pragma once

#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/ProcessLauncher.h"

#include <QObject>
#include <thread>

namespace corvane {

/// One thread that reads what all children print and notices their ends. It owns descriptors and nothing of
/// the program; what it finds arrives on the thread that made it.
class ChildReader {
public:
    struct Receiver {
        std::function<void(quint64 id, OutputChunk)> output;
        std::function<void(quint64 id, int code)> ended; ///< once, after the child's last chunk
    };

    explicit ChildReader(Receiver receiver);
    ~ChildReader(); ///< nothing arrives any more

    /// `output` may be closed; `handle` becomes readable when the process ends, and is reaped here.
    void add(quint64 id, Descriptor output, std::shared_ptr<const Descriptor> handle);

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
