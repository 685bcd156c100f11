#include "Foundation/NotificationCentre.h"

namespace corvane {

NotificationCentre::Observation NotificationCentre::observe(const QString& name, Callback callback)
{
    m_entries.removeIf([](const Entry& entry) { return entry.callback.expired(); });
    Observation observation;
    observation.m_callback = std::make_shared<const Callback>(std::move(callback));
    m_entries.append({ name, observation.m_callback });
    return observation;
}

void NotificationCentre::post(const QString& name, const std::optional<QString>& object, const QVariantMap& userInfo)
{
    const Notification notification { name, object, userInfo };
    // An observer may add or remove observations during the call.
    const QList<Entry> entries = m_entries;
    for (const Entry& entry : entries) {
        if (entry.name != name)
            continue;
        if (const auto callback = entry.callback.lock())
            (*callback)(notification);
    }
}

}
