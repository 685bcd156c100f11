#pragma once

#include <functional>
#include <memory>

namespace corvane {

/// Runs blocking work on another thread. The work owns no state of the program: it takes values and returns one, which
/// `done` receives on the thread that created the queue. Destroying the queue waits for the running work; its result is
/// dropped, and so is work that has not started.
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
