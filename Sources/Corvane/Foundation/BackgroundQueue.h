#pragma once

#include <functional>
#include <memory>

namespace corvane {

/// Runs blocking work away from the main thread. The work owns no state of the program: it takes values
/// and gives one back, which `done` receives on the thread that made the queue. Destroying the queue waits
/// for the work that runs; what it would have brought home is dropped, as is work that has not begun.
class BackgroundQueue {
public:
    BackgroundQueue();
    ~BackgroundQueue();

    template <typename Value> void run(std::function<Value()> work, std::function<void(Value)> done)
    {
        auto result = std::make_shared<Value>();
        runErased([work = std::move(work), result] { *result = work(); },
            [done = std::move(done), result] { done(std::move(*result)); });
    }

private:
    void runErased(std::function<void()> work, std::function<void()> done);

    struct State;
    std::unique_ptr<State> m_state;
};

}
