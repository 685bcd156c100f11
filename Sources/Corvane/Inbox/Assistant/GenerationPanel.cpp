#include "Inbox/Assistant/GenerationPanel.h"

#include "AI/LumoAI.h"

namespace corvane {

GenerationPanel::GenerationPanel(LumoAI& ai, QObject* parent)
    : QObject(parent)
    , m_ai(ai)
{
}

GenerationPanel::~GenerationPanel()
{
    m_running.cancel();
}

void GenerationPanel::open(const ContactRow& contact)
{
    const bool another = contact.id != m_contact.id;
    m_contact = contact;
    if (another)
        dismiss();
    else
        Q_EMIT changed();
}

QString GenerationPanel::backend() const
{
    return m_ai.availableName().value_or(QString());
}

bool GenerationPanel::canTryAgain() const
{
    return m_again && (m_state == State::Error || m_state == State::MissingModel);
}

void GenerationPanel::tryAgain()
{
    const auto again = m_again;
    if (canTryAgain())
        again();
}

void GenerationPanel::dismiss()
{
    m_running.cancel();
    m_again = nullptr;
    forget();
    show(State::Idle, {});
}

CancelHandle GenerationPanel::begin(const QString& title, std::function<void()> again)
{
    m_running.cancel();
    m_running = CancelHandle();
    m_again = std::move(again);
    const CancelHandle mine = m_running;
    forget();
    show(State::Loading, title);
    return mine;
}

void GenerationPanel::show(State state, const QString& title, const QString& detail)
{
    m_state = state;
    m_title = title;
    m_detail = detail;
    Q_EMIT changed();
}

}
