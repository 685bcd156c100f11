#pragma once

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace corvane {

/// A value that arrives later, awaited by one coroutine: `co_await arrival`. Copies share the arrival. Main thread
/// only.
template <typename Value> class Arrival {
public:
    /// At most once. The waiting coroutine resumes inside this call.
    void arrive(Value value) const
    {
        const std::shared_ptr<State> state = m_state;
        state->value = std::move(value);
        if (state->waiting)
            std::exchange(state->waiting, nullptr).resume();
    }
    bool hasArrived() const { return m_state->value.has_value(); }

    bool await_ready() const noexcept { return hasArrived(); }
    void await_suspend(std::coroutine_handle<> waiting) const noexcept { m_state->waiting = waiting; }
    Value await_resume() const { return std::move(*m_state->value); }

private:
    struct State {
        std::optional<Value> value;
        std::coroutine_handle<> waiting = nullptr;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

}
