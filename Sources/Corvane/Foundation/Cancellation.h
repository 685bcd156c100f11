#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <functional>
#include <memory>

namespace corvane {

/// Cancels the work that was started with it. Copies share one handle, between the caller and the work; a handle that
/// nobody cancels has no effect. Main thread only.
class CancelHandle {
public:
    using Callback = std::function<void()>;

    /// Keeps one callback registered; destroying it removes the callback.
    class [[nodiscard]] Watch {
    private:
        friend class CancelHandle;
        std::shared_ptr<const Callback> m_callback;
    };

    void cancel() const; ///< calls the callbacks at once, in order; a second call does nothing
    bool isCancelled() const { return m_state->isCancelled; }

    /// Called by `cancel`; never if it was cancelled before.
    Watch onCancel(Callback callback) const;

private:
    struct State {
        bool isCancelled = false;
        QList<std::weak_ptr<const Callback>> callbacks;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

/// The result of cancelled work.
std::unexpected<Error> cancelled();

}
