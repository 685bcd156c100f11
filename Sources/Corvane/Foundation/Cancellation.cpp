#include "Foundation/Cancellation.h"

#include "Foundation/Literals.h"

namespace corvane {

void CancelHandle::cancel() const
{
    const std::shared_ptr<State> state = m_state;
    state->isCancelled = true;
    const auto callbacks = std::exchange(state->callbacks, {});
    for (const auto& weak : callbacks) {
        if (const auto callback = weak.lock())
            (*callback)();
    }
}

CancelHandle::Watch CancelHandle::onCancel(Callback callback) const
{
    Watch watch;
    watch.m_callback = std::make_shared<const Callback>(std::move(callback));
    m_state->callbacks.removeIf([](const auto& weak) { return weak.expired(); });
    if (!m_state->isCancelled)
        m_state->callbacks.append(watch.m_callback);
    return watch;
}

std::unexpected<Error> cancelled()
{
    return failure(u"Cancelled."_s);
}

}
