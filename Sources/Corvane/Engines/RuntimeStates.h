#pragma once

#include "Engines/RuntimeState.h"

#include <QHash>
#include <QUuid>
#include <functional>

namespace corvane {

/// The state of each account; stopped and empty by default.
class RuntimeStates {
public:
    explicit RuntimeStates(std::function<void(const QUuid& accountId)> changed)
        : m_changed(std::move(changed))
    {
    }

    RuntimeState get(const QUuid& accountId) const { return m_states.value(accountId); }

    /// Notifies, even if the state did not change.
    void set(const QUuid& accountId, const RuntimeState& state)
    {
        m_states.insert(accountId, state);
        m_changed(accountId);
    }

    void setStatus(const QUuid& accountId, WAStatus status)
    {
        RuntimeState state = get(accountId);
        state.status = status;
        set(accountId, state);
    }

    void setLog(const QUuid& accountId, const QString& text)
    {
        RuntimeState state = get(accountId);
        state.lastLog = text;
        set(accountId, state);
    }

    void setExit(const QUuid& accountId, const QString& words)
    {
        RuntimeState state = get(accountId);
        if (std::exchange(state.lastExit, words) != words)
            set(accountId, state);
    }

private:
    QHash<QUuid, RuntimeState> m_states;
    std::function<void(const QUuid&)> m_changed;
};

}
