#pragma once

#include "Inbox/Assistant/AskLumo.h"
#include "Inbox/Assistant/DraftAssistant.h"
#include "Inbox/Assistant/ThreadSummary.h"
#include "Inbox/Compose/Composer.h"

namespace corvane {

/// What is written to the open person: the composer, and the assistant's panels beside it.
class Reply : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::Composer* composer READ composer CONSTANT)
    Q_PROPERTY(corvane::DraftAssistant* assistant READ assistant CONSTANT)
    Q_PROPERTY(corvane::ThreadSummary* summary READ summary CONSTANT)
    Q_PROPERTY(corvane::AskLumo* askLumo READ askLumo CONSTANT)
public:
    /// Everything outlives the reply.
    Reply(const Composer::Surroundings& at, AIServices& ai, QObject* parent = nullptr);

    void open(const ContactRow& contact); ///< with an empty id: nobody

    Composer* composer() { return &m_composer; }
    DraftAssistant* assistant() { return &m_assistant; }
    ThreadSummary* summary() { return &m_summary; }
    AskLumo* askLumo() { return &m_askLumo; }

private:
    Composer m_composer;
    DraftAssistant m_assistant;
    ThreadSummary m_summary;
    AskLumo m_askLumo;
};

}
