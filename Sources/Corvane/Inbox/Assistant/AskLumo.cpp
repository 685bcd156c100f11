#include "Inbox/Assistant/AskLumo.h"

#include "AI/AIServices.h"
#include "Foundation/Literals.h"
#include "Inbox/Assistant/AssistantContext.h"
#include "Inbox/List/ContactItem.h"

namespace corvane {

namespace {

QString noBackend()
{
    return u"no AI backend"_s;
}

}

AskLumo::AskLumo(LocalDB& db, AIServices& ai, QObject* parent)
    : GenerationPanel(ai.ai, parent)
    , m_db(db)
    , m_services(ai)
{
    connect(&ai.systemModel, &SystemLanguageModel::availabilityChanged, this, &AskLumo::changed);
}

QString AskLumo::heading() const
{
    return u"Ask Lumo about "_s + contactName(m_contact);
}

QString AskLumo::placeholder() const
{
    return u"e.g. What did we agree on? What's the next step?"_s;
}

QString AskLumo::footer() const
{
    return u"Grounded in the local thread + notes · "_s + (backend().isEmpty() ? noBackend() : backend());
}

QString AskLumo::actionLabel() const
{
    return backend().isEmpty() ? noBackend() : u"Ask"_s;
}

void AskLumo::ask(const QString& question)
{
    if (!question.trimmed().isEmpty() && !m_contact.id.isEmpty())
        run(question.trimmed());
}

void AskLumo::lookForBackend()
{
    m_services.systemModel.refresh();
}

QCoro::Task<> AskLumo::run(QString question)
{
    const CancelHandle cancel
        = begin(u"Asking "_s + (backend().isEmpty() ? noBackend() : backend()), [this, question] { ask(question); });
    m_question = question;
    const Result<QString> answer = co_await m_services.summaries.ask(contactName(m_contact),
        draftContext(m_db, m_contact).recentNotes, localThread(m_db, m_contact), question, cancel);
    if (cancel.isCancelled())
        co_return;
    m_answer = answer.value_or(QString()).trimmed();
    if (answer)
        show(State::Ready, question);
    else
        show(State::Error, answer.error().message);
}

void AskLumo::forget()
{
    m_question.clear();
    m_answer.clear();
}

}
