#include "Notifications/Notifier.h"

#include "Foundation/Channel.h"
#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/Scheduler.h"
#include "Foundation/Text.h"
#include "Foundation/UserDefaults.h"

namespace corvane {

namespace {

constexpr qint64 debounceMs = 4000;
constexpr int bodyLength = 180;

const QString approvalCategory = u"NIMB_APPROVAL"_s;
const QString approveAction = u"NIMB_APPROVE"_s;
const QString rejectAction = u"NIMB_REJECT"_s;
const QString contactIdKey = u"contactId"_s;
const QString approvalKindKey = u"approvalKind"_s;
const QString approvalIdKey = u"approvalId"_s;
const QVariantMap ofDictation { { u"dictation"_s, true } };
const QString recordingKey = u"recording"_s;
const QString terminalKey = u"terminal"_s;

QString approvalSubtitle(const QString& kind)
{
    if (kind == u"draft"_s)
        return u"Outbound message — Approve sends it"_s;
    if (kind == u"draft_failed"_s)
        return u"Outbound message failed — Approve retries"_s;
    if (kind == u"proposal"_s)
        return u"CRM update proposal"_s;
    if (kind == u"decision"_s)
        return u"Agent decision"_s;
    if (kind == u"event"_s)
        return u"Calendar event — Approve adds it"_s;
    return u"Approval needed"_s;
}

QString approvalActionName(const QString& action)
{
    if (action == approveAction)
        return u"approve"_s;
    if (action == rejectAction)
        return u"reject"_s;
    return u"open"_s;
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
        log(u"[Notifier] no bundle identifier (bare/unsigned launch) — skipping notification bootstrap"_s);
        return;
    }
    m_service.setResponseHandler(
        [this](const QVariantMap& userInfo, const QString& action) { handleResponse(userInfo, action); });
}

bool Notifier::enabled() const
{
    return m_defaults.boolean(u"notifyOnNewMessage"_s).value_or(true);
}

bool Notifier::wouldNotify(const QString& contactId) const
{
    if (!m_service.isAvailable() || !enabled())
        return false;
    const auto last = m_lastFire.constFind(contactId);
    if (last == m_lastFire.cend())
        return true;
    // A clock that was set back must not silence a contact.
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
    banner.title = name.isEmpty() ? u"New message"_s : name;
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
    banner.identifier = u"approval-%1-%2"_s.arg(kind, id);
    banner.thread = u"nimb.approvals"_s;
    banner.category = approvalCategory;
    banner.title = title.isEmpty() ? u"Approval needed"_s : title;
    banner.subtitle = approvalSubtitle(kind);
    banner.body = firstCharacters(body, bodyLength);
    if (kind != u"approval"_s)
        banner.actions = { { approveAction, u"Approve"_s }, { rejectAction, u"Reject"_s } };
    banner.userInfo = { { approvalKindKey, kind }, { approvalIdKey, id } };
    m_service.show(banner);
}

/// One banner of its kind at a time; clicking it raises the window.
void Notifier::showAlone(const QString& kind, const QString& title, const QString& body)
{
    if (!m_service.isAvailable())
        return;
    Banner banner;
    banner.identifier = banner.thread = kind;
    banner.title = title;
    banner.body = body;
    banner.userInfo = { { kind, true } };
    m_service.show(banner);
}

void Notifier::notifyRecording(const QString& title, const QString& body)
{
    showAlone(recordingKey, title, body);
}

void Notifier::notifyTerminal(const QString& title, const QString& body)
{
    if (enabled())
        showAlone(terminalKey, title, body);
}

void Notifier::notifyDictation(const QString& text, const QList<Banner::Action>& buttons)
{
    Banner banner;
    banner.identifier = u"dictation"_s;
    banner.thread = u"dictation"_s;
    banner.category = u"dictation"_s;
    banner.title = u"Dictation"_s;
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
        if (name == u"open"_s)
            m_activate();
        m_centre.post(notifications::approvalAction, std::nullopt,
            { { u"kind"_s, userInfo.value(approvalKindKey) }, { u"id"_s, userInfo.value(approvalIdKey) },
                { u"action"_s, name } });
    } else if (userInfo.contains(contactIdKey)) {
        m_activate();
        m_centre.post(notifications::openConversation, userInfo.value(contactIdKey).toString());
    } else if (userInfo.contains(recordingKey) || userInfo.contains(terminalKey)) {
        m_activate();
    }
}

}
