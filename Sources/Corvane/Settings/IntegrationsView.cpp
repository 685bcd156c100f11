#include "Settings/IntegrationsView.h"

#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

IntegrationsView::IntegrationsView(const Cards& cards, NotificationCentre& centre, QObject* parent)
    : QObject(parent)
    , m_cards(cards)
    , m_section(u"accounts"_s)
{
    connect(&cards.localAccess, &LocalAccess::accountsAsked, this, [this] { setSection(u"accounts"_s); });
    m_sectionAsked = centre.observe(notifications::openSettings,
        [this](const Notification& notification) { setSection(notification.object.value_or(QString())); });
}

const QList<SettingsSection>& IntegrationsView::sections()
{
    static const QList<SettingsSection> all {
        { u"accounts"_s, u"Accounts"_s, u"link"_s },
        { u"approvals"_s, u"Approvals"_s, u"approvals"_s },
        { u"assistant"_s, u"Assistant"_s, u"hub-lumo"_s },
        { u"voice"_s, u"Voice"_s, u"microphone"_s },
        { u"calls"_s, u"Calls"_s, u"call-start"_s },
        { u"calendar"_s, u"Calendar"_s, u"view-calendar"_s },
        { u"sync"_s, u"Sync"_s, u"sync"_s },
        { u"care"_s, u"Care"_s, u"dialog-ok"_s },
        { u"system"_s, u"System"_s, u"computer"_s },
    };
    return all;
}

QString IntegrationsView::sectionLabel() const
{
    return std::ranges::find(sections(), m_section, &SettingsSection::id)->label;
}

void IntegrationsView::setSection(const QString& id)
{
    const bool known
        = std::ranges::any_of(sections(), [&](const SettingsSection& section) { return section.id == id; });
    if (!known || id == m_section)
        return;
    m_section = id;
    readSection();
    Q_EMIT sectionChanged();
}

void IntegrationsView::setVisible(bool visible)
{
    if (visible == m_visible)
        return;
    m_visible = visible;
    readSection();
    m_cards.accounts.setVisible(visible);
    Q_EMIT visibleChanged();
}

void IntegrationsView::readSection()
{
    if (m_visible && m_section == "approvals"_L1)
        m_cards.controlChat.refresh();
    if (m_visible && m_section == "sync"_L1) {
        m_cards.sync.refresh();
        m_cards.push.refresh();
    }
    m_cards.assistant.setVisible(m_visible && m_section == "assistant"_L1);
}

}
