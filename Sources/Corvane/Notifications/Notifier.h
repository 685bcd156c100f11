#pragma once

#include "Foundation/Literals.h"
#include "Platform/NotificationService.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QVariantMap>
#include <functional>

namespace corvane {

class NotificationCentre;
class Scheduler;
class UserDefaults;

namespace notifications {
inline const QString dictationAction = u"corvane.dictationAction"_s; ///< object: a button's id, or empty
}

/// Banners for new messages and approvals. Clicking one posts an in-process notification; nothing here changes data.
class Notifier {
public:
    /// All references outlive the notifier. `activate` raises the window.
    Notifier(NotificationService& service, NotificationCentre& centre, UserDefaults& defaults, Scheduler& scheduler,
        std::function<void()> activate);
    ~Notifier();
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;

    void bootstrap(); ///< may be called again

    /// Whether `notifyMessage` would show a banner for the contact now.
    bool wouldNotify(const QString& contactId) const;
    void notifyMessage(const QString& contactId, const QString& name, const QString& channel, const QString& body);

    const QSet<QString>& contactsTold() const { return m_told; } ///< whose banners may still be shown
    void withdrawMessages(const QString& contactId); ///< their thread was read

    /// A second banner for the same item replaces the first. `kind` is "draft", "draft_failed", "proposal" or
    /// "decision"; one of kind "approval" is informational and has no buttons.
    void notifyApproval(const QString& kind, const QString& id, const QString& title, const QString& body);
    void withdrawApproval(const QString& kind, const QString& id); ///< it was decided

    /// The state of dictation, on desktops where only a banner can show it: one at a time. Clicking one of its buttons
    /// posts `notifications::dictationAction` with its id.
    void notifyDictation(const QString& text, const QList<Banner::Action>& buttons);
    void withdrawDictation();

    /// A recording that started or failed without the window; a later banner replaces it. Shown whatever the user's
    /// settings for other banners.
    void notifyRecording(const QString& title, const QString& body);
    /// What a program in a terminal asked to be told, unless the user turned banners off; a later one replaces it.
    void notifyTerminal(const QString& title, const QString& body);

private:
    bool enabled() const; ///< the user default "notifyOnNewMessage"; on by default
    void showAlone(const QString& kind, const QString& title, const QString& body);
    void handleResponse(const QVariantMap& userInfo, const QString& action);

    NotificationService& m_service;
    NotificationCentre& m_centre;
    UserDefaults& m_defaults;
    Scheduler& m_scheduler;
    std::function<void()> m_activate;
    QHash<QString, qint64> m_lastFire; ///< contact id to the time of its last banner, in milliseconds
    QSet<QString> m_told;
};

}
