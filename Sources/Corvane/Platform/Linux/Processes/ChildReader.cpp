#include "Platform/Linux/Processes/ChildReader.h"

#include "Platform/Linux/Processes/SpawnedChild.h"
#include "Platform/Linux/Processes/WholeLines.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <mutex>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unordered_map>
#include <vector>

namespace corvane {

namespace {

constexpr size_t chunkLimit = 64 * 1024;

/// The 64 bits of an epoll event's data: the child, and which of its two descriptors.
enum class Source : quint64 { Output, Handle };
constexpr quint64 ordersTag = ~quint64(0);

quint64 tagOf(quint64 id, Source source)
{
    return id << 1 | static_cast<quint64>(source);
}

}

/// Requests of other threads to the reading thread. Chunks keep it alive, so that they may be destroyed at
/// any time on any thread.
class ChildReader::Orders {
public:
    struct Addition {
        quint64 id = 0;
        Descriptor output;
        std::shared_ptr<const Descriptor> handle;
        char lineEnd = '\n';
    };
    struct Batch {
        std::vector<Addition> additions;
        std::vector<quint64> released;
        bool stop = false;
    };

    const Descriptor& signal() const { return m_signal; }

    template <typename Change> void give(Change change)
    {
        {
            const std::lock_guard lock(m_mutex);
            change(m_batch);
        }
        const quint64 one = 1;
        [[maybe_unused]] const ssize_t written = ::write(m_signal.number(), &one, sizeof one);
    }

    Batch take()
    {
        quint64 count = 0;
        [[maybe_unused]] const ssize_t got = ::read(m_signal.number(), &count, sizeof count);
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_batch, {});
    }

private:
    Descriptor m_signal { ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK) };
    std::mutex m_mutex;
    Batch m_batch;
};

/// Lets the launcher continue reading once its chunk is destroyed.
class ChildReader::Hold {
public:
    Hold(std::shared_ptr<Orders> orders, quint64 id)
        : m_orders(std::move(orders))
        , m_id(id)
    {
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold()
    {
        m_orders->give([this](Orders::Batch& batch) { batch.released.push_back(m_id); });
    }

private:
    std::shared_ptr<Orders> m_orders;
    quint64 m_id;
};

/// Everything that happens on the reading thread.
class ChildReader::Loop {
public:
    Loop(std::shared_ptr<Orders> orders, QObject& home, Receiver receiver)
        : m_orders(std::move(orders))
        , m_home(home)
        , m_receiver(std::move(receiver))
    {
        watch(EPOLL_CTL_ADD, m_orders->signal(), ordersTag, EPOLLIN);
    }

    void run()
    {
        std::array<epoll_event, 64> events;
        while (!m_stopping) {
            const int count = ::epoll_wait(m_epoll.number(), events.data(), static_cast<int>(events.size()), -1);
            for (int i = 0; i < count; ++i)
                handle(events[static_cast<size_t>(i)].data.u64);
        }
    }

private:
    struct Child {
        quint64 id = 0;
        Descriptor output;
        std::shared_ptr<const Descriptor> handle;
        WholeLines lines;
        bool chunkIsOut = false;
        std::optional<int> exitCode = std::nullopt;
        size_t leftAfterExit = 0; ///< bytes left in the pipe when the child exited
    };

    void watch(int operation, const Descriptor& descriptor, quint64 tag, quint32 events)
    {
        epoll_event event {};
        event.events = events;
        event.data.u64 = tag;
        ::epoll_ctl(m_epoll.number(), operation, descriptor.number(), &event);
    }

    void handle(quint64 tag);
    void obeyOrders();
    void noticeEnd(Child& child);
    void goOn(quint64 id);
    void read(Child& child);
    void post(Child& child, QByteArray lines);

    Descriptor m_epoll { ::epoll_create1(EPOLL_CLOEXEC) };
    std::shared_ptr<Orders> m_orders;
    QObject& m_home;
    const Receiver m_receiver;
    std::unordered_map<quint64, Child> m_children;
    std::array<char, chunkLimit> m_buffer;
    bool m_stopping = false;
};

void ChildReader::Loop::handle(quint64 tag)
{
    if (tag == ordersTag)
        return obeyOrders();
    const quint64 id = tag >> 1;
    const auto child = m_children.find(id);
    if (child == m_children.end())
        return;
    if (tag == tagOf(id, Source::Handle))
        noticeEnd(child->second);
    goOn(id);
}

void ChildReader::Loop::obeyOrders()
{
    Orders::Batch batch = m_orders->take();
    m_stopping = batch.stop;
    for (Orders::Addition& addition : batch.additions) {
        const quint64 id = addition.id;
        Child child { id, std::move(addition.output), std::move(addition.handle), WholeLines(addition.lineEnd) };
        watch(EPOLL_CTL_ADD, *child.handle, tagOf(id, Source::Handle), EPOLLIN | EPOLLONESHOT);
        if (child.output.isOpen())
            watch(EPOLL_CTL_ADD, child.output, tagOf(id, Source::Output), EPOLLIN | EPOLLONESHOT);
        m_children.emplace(id, std::move(child));
    }
    for (const quint64 id : batch.released) {
        const auto child = m_children.find(id);
        if (child == m_children.end())
            continue;
        child->second.chunkIsOut = false;
        goOn(id);
    }
}

void ChildReader::Loop::noticeEnd(Child& child)
{
    child.exitCode = reapChild(*child.handle);
    // A process that the child left behind may keep the pipe open and continue writing.
    int waiting = 0;
    if (child.output.isOpen() && ::ioctl(child.output.number(), FIONREAD, &waiting) == 0)
        child.leftAfterExit = static_cast<size_t>(waiting);
}

/// Reads where reading is allowed, and reports the end once nothing is left to read.
void ChildReader::Loop::goOn(quint64 id)
{
    Child& child = m_children.at(id);
    if (child.output.isOpen() && !child.chunkIsOut)
        read(child);
    if (!child.exitCode || child.output.isOpen())
        return;
    const int code = *child.exitCode;
    m_children.erase(id);
    QMetaObject::invokeMethod(&m_home, [ended = m_receiver.ended, id, code] { ended(id, code); }, Qt::QueuedConnection);
}

void ChildReader::Loop::read(Child& child)
{
    do {
        const size_t limit = child.exitCode ? std::min(chunkLimit, child.leftAfterExit) : chunkLimit;
        const ssize_t count = ::read(child.output.number(), m_buffer.data(), limit);
        const bool comesLater = count < 0 && (errno == EINTR || (errno == EAGAIN && !child.exitCode));
        if (count <= 0 && !comesLater)
            return child.output.close();
        if (count > 0) {
            child.leftAfterExit -= child.exitCode ? static_cast<size_t>(count) : 0;
            QByteArray lines = child.lines.take(QByteArrayView(m_buffer.data(), count));
            if (!lines.isEmpty())
                return post(child, std::move(lines));
        }
    } while (child.exitCode);
    watch(EPOLL_CTL_MOD, child.output, tagOf(child.id, Source::Output), EPOLLIN | EPOLLONESHOT);
}

void ChildReader::Loop::post(Child& child, QByteArray lines)
{
    child.chunkIsOut = true;
    QMetaObject::invokeMethod(
        &m_home,
        [output = m_receiver.output, id = child.id,
            chunk = OutputChunk { std::move(lines), std::make_shared<Hold>(m_orders, child.id) }]() mutable {
            output(id, std::move(chunk));
        },
        Qt::QueuedConnection);
}

ChildReader::ChildReader(Receiver receiver)
    : m_orders(std::make_shared<Orders>())
    , m_loop(std::make_unique<Loop>(m_orders, m_home, std::move(receiver)))
    , m_thread([this] { m_loop->run(); })
{
}

ChildReader::~ChildReader()
{
    m_orders->give([](Orders::Batch& batch) { batch.stop = true; });
    m_thread.join();
}

void ChildReader::add(quint64 id, Descriptor output, std::shared_ptr<const Descriptor> handle, char lineEnd)
{
    m_orders->give([&](Orders::Batch& batch) {
        batch.additions.push_back({ id, std::move(output), std::move(handle), lineEnd });
    });
}

}
