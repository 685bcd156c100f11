#include "Notifications/Notifier.h"

#include "Foundation/Channel.h"
#include "Foundation/Ids.h"
#include "Foundation/Log.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/Scheduler.h"
#include "Foundation/Text.h"
#include "Foundation/UserDefaults.h"

namespace corvane {

namespace {

constexpr qint64 debounceMs = 4000;
constexpr int bodyLength = 180;

const QString approvalCategory = QStringLiteral("NIMB_APPROVAL");
const QString approveAction = QStringLiteral("NIMB_APPROVE");
const QString rejectAction = QStringLiteral("NIMB_REJECT");
const QString contactIdKey = QStringLiteral("contactId");
const QString approvalKindKey = QStringLiteral("approvalKind");
const QString approvalIdKey = QStringLiteral("approvalId");
const QVariantMap ofDictation { { QStringLiteral("dictation"), true } };
const QString recordingKey = QStringLiteral("recording");

QString approvalSubtitle(const QString& kind)
{
    if (kind == QStringLiteral("draft"))
        return QStringLiteral("Outbound message — Approve sends it");
    if (kind == QStringLiteral("draft_failed"))
        return QStringLiteral("Outbound message failed — Approve retries");
    if (kind == QStringLiteral("proposal"))
        return QStringLiteral("CRM update proposal");
    if (kind == QStringLiteral("decision"))
        return QStringLiteral("Agent decision");
    if (kind == QStringLiteral("event"))
        return QStringLiteral("Calendar event — Approve adds it");
    return QStringLiteral("Approval needed");
}

QString approvalActionName(const QString& action)
{
    if (action == approveAction)
        return QStringLiteral("approve");
    if (action == rejectAction)
        return QStringLiteral("reject");
    return QStringLiteral("open");
}

}

Notifier::Notifier(NotificationService& service, NotificationCentre& centre, UserDefaults& defaults,
    Scheduler& scheduler, std::function<void()> activate)
    : m_service(service)
    , m_centre(centre)
    , m_defaults(defaults)
    , m_scheduler(scheduler)
    , m_activate(std::move(activate))
{
}

Notifier::~Notifier()
{
    m_service.setResponseHandler({});
}

void Notifier::bootstrap()
{
    if (!m_service.isAvailable()) {
        log(QStringLiteral("[Notifier] no bundle identifier (bare/unsigned launch) — skipping notification bootstrap"));
        return;
    }
    m_service.setResponseHandler(
        [this](const QVariantMap& userInfo, const QString& action) { handleResponse(userInfo, action); });
}

bool Notifier::enabled() const
{
    return m_defaults.boolean(QStringLiteral("notifyOnNewMessage")).value_or(true);
}

bool Notifier::wouldNotify(const QString& contactId) const
{
    if (!m_service.isAvailable() || !enabled())
        return false;
    const auto last = m_lastFire.constFind(contactId);
    if (last == m_lastFire.cend())
        return true;
    // A clock that was set back must not silence a contact until it has caught up.
    const qint64 elapsed = m_scheduler.nowMs() - *last;
    return elapsed < 0 || elapsed >= debounceMs;
}

void Notifier::notifyMessage(const QString& contactId, const QString& name, const QString& channel, const QString& body)
{
    if (!wouldNotify(contactId))
        return;
    m_lastFire[contactId] = m_scheduler.nowMs();

    Banner banner;
    banner.identifier = uuidText();
    banner.thread = contactId;
    banner.title = name.isEmpty() ? QStringLiteral("New message") : name;
    banner.subtitle = channelLabel(channel);
    banner.body = firstCharacters(body, bodyLength);
    banner.userInfo = { { contactIdKey, contactId } };
    m_told.insert(contactId);
    m_service.show(banner);
}

void Notifier::withdrawMessages(const QString& contactId)
{
    if (m_told.remove(contactId))
        m_service.withdraw({ { contactIdKey, contactId } });
}

void Notifier::withdrawApproval(const QString& kind, const QString& id)
{
    m_service.withdraw({ { approvalKindKey, kind }, { approvalIdKey, id } });
}

void Notifier::notifyApproval(const QString& kind, const QString& id, const QString& title, const QString& body)
{
    if (!m_service.isAvailable() || !enabled())
        return;
    Banner banner;
    banner.identifier = QStringLiteral("approval-%1-%2").arg(kind, id);
    banner.thread = QStringLiteral("nimb.approvals");
    banner.category = approvalCategory;
    banner.title = title.isEmpty() ? QStringLiteral("Approval needed") : title;
    banner.subtitle = approvalSubtitle(kind);
    banner.body = firstCharacters(body, bodyLength);
    if (kind != QStringLiteral("approval"))
        banner.actions = { { approveAction, QStringLiteral("Approve") }, { rejectAction, QStringLiteral("Reject") } };
    banner.userInfo = { { approvalKindKey, kind }, { approvalIdKey, id } };
    m_service.show(banner);
}

void Notifier::notifyRecording(const QString& title, const QString& body)
{
    if (!m_service.isAvailable())
        return;
    Banner banner;
    banner.identifier = banner.thread = recordingKey;
    banner.title = title;
    banner.body = body;
    banner.userInfo = { { recordingKey, true } };
    m_service.show(banner);
}

void Notifier::notifyDictation(const QString& text, const QList<Banner::Action>& buttons)
{
    Banner banner;
    banner.identifier = QStringLiteral("dictation");
    banner.thread = QStringLiteral("dictation");
    banner.category = QStringLiteral("dictation");
    banner.title = QStringLiteral("Dictation");
    banner.body = text;
    banner.actions = buttons;
    banner.userInfo = ofDictation;
    m_service.show(banner);
}

void Notifier::withdrawDictation()
{
    m_service.withdraw(ofDictation);
}

void Notifier::handleResponse(const QVariantMap& userInfo, const QString& action)
{
    if (userInfo == ofDictation) {
        m_centre.post(notifications::dictationAction, action);
    } else if (userInfo.contains(approvalKindKey) && userInfo.contains(approvalIdKey)) {
        const QString name = approvalActionName(action);
        if (name == QStringLiteral("open"))
            m_activate();
        m_centre.post(notifications::approvalAction, std::nullopt,
            { { QStringLiteral("kind"), userInfo.value(approvalKindKey) },
                { QStringLiteral("id"), userInfo.value(approvalIdKey) }, { QStringLiteral("action"), name } });
    } else if (userInfo.contains(contactIdKey)) {
        m_activate();
        m_centre.post(notifications::openConversation, userInfo.value(contactIdKey).toString());
    } else if (userInfo.contains(recordingKey)) {
        m_activate();
    }
}

}
