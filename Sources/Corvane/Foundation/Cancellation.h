#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <functional>
#include <memory>

namespace corvane {

/// Ends what was started with it. Copies are one handle, shared by who waits and who works; a fresh one that
/// nobody cancels changes nothing. Main thread only.
class CancelHandle {
public:
    using Callback = std::function<void()>;

    /// Keeps one callback alive; destroying it takes the callback back.
    class [[nodiscard]] Watch {
    private:
        friend class CancelHandle;
        std::shared_ptr<const Callback> m_callback;
    };

    void cancel() const; ///< calls who watches, at once and in their order; a second call does nothing
    bool isCancelled() const { return m_state->isCancelled; }

    /// Called by `cancel`; never where that has happened already.
    Watch onCancel(Callback callback) const;

private:
    struct State {
        bool isCancelled = false;
        QList<std::weak_ptr<const Callback>> callbacks;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

/// The result of work that its handle ended.
std::unexpected<Error> cancelled();

}
