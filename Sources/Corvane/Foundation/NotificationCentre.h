#pragma once

#include <QString>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <optional>

namespace corvane {

/// An in-process notification, told apart by its name.
struct Notification {
    QString name;
    std::optional<QString> object;
    QVariantMap userInfo;
};

/// Posts by name to whoever observes, at once and on the main thread.
class NotificationCentre {
public:
    using Callback = std::function<void(const Notification&)>;

    /// Keeps one observation alive; destroying it ends the observation. It may outlive the centre.
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
inline const QString openConversation = QStringLiteral("nimb.openConversation"); ///< object: a contact id
inline const QString openSettings = QStringLiteral("nimb.openSettings"); ///< object: a section, or none
inline const QString openWorkConsole = QStringLiteral("nimb.openWorkConsole"); ///< object: a hub's raw value, or none
inline const QString openApprovals = QStringLiteral("corvane.openApprovals");
inline const QString focusComposer = QStringLiteral("nimb.focusComposer");
inline const QString approvalAction = QStringLiteral("nimb.approvalAction"); ///< user info: kind, id, action
inline const QString activeWorkspaceChanged = QStringLiteral("nimb.activeWorkspaceChanged");
}

}
