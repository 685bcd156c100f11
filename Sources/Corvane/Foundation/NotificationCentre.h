#pragma once

#include "Foundation/Literals.h"

#include <QString>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <optional>

namespace corvane {

/// An in-process notification, identified by its name.
struct Notification {
    QString name;
    std::optional<QString> object;
    QVariantMap userInfo;
};

/// Posts notifications by name to their observers, synchronously on the main thread.
class NotificationCentre {
public:
    using Callback = std::function<void(const Notification&)>;

    /// Keeps one observation registered; destroying it ends the observation. It may outlive the centre.
    class [[nodiscard]] Observation {
    public:
        Observation() = default;

    private:
        friend class NotificationCentre;
        std::shared_ptr<const Callback> m_callback;
    };

    Observation observe(const QString& name, Callback callback);
    void post(
        const QString& name, const std::optional<QString>& object = std::nullopt, const QVariantMap& userInfo = {});

private:
    struct Entry {
        QString name;
        std::weak_ptr<const Callback> callback;
    };
    QList<Entry> m_entries;
};

namespace notifications {
inline const QString openConversation = u"nimb.openConversation"_s; ///< object: a contact id
inline const QString openSettings = u"nimb.openSettings"_s; ///< object: a section, or none
inline const QString openWorkConsole = u"nimb.openWorkConsole"_s; ///< object: a hub's raw value, or none
inline const QString openApprovals = u"corvane.openApprovals"_s;
inline const QString focusComposer = u"nimb.focusComposer"_s;
inline const QString approvalAction = u"nimb.approvalAction"_s; ///< user info: kind, id, action
inline const QString activeWorkspaceChanged = u"nimb.activeWorkspaceChanged"_s;
}

}
