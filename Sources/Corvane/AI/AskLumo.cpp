#include "AI/AskLumo.h"

#include "AI/LumoAI.h"
#include "Foundation/Literals.h"

namespace corvane {

namespace {

constexpr int mostAtOnce = 4;

const QString instructions
    = u"You are LumoAI inside Corvane. Answer the user's Siri or Shortcuts question concisely.\n"
      "If the answer needs private app context that is not available to this App Intent, say so plainly.\n"
      "Never send, schedule, purchase, delete, or perform external actions from this intent."_s;

}

QCoro::Task<Result<QString>> askLumo(LumoAI& ai, QString question, CancelHandle cancel)
{
    const QString asked = question.trimmed();
    if (asked.isEmpty())
        co_return u"Ask Lumo needs a question."_s;
    co_return co_await ai.respond(instructions, asked, cancel);
}

LumoQuestions::LumoQuestions(LumoAI& ai)
    : m_ai(ai)
{
}

LumoQuestions::~LumoQuestions()
{
    m_life.cancel();
}

void LumoQuestions::ask(const QString& question, Reply reply)
{
    if (m_open >= mostAtOnce)
        return reply(failure(u"Lumo answers other questions now. Try again."_s));
    ++m_open;
    run(question, std::move(reply));
}

QCoro::Task<> LumoQuestions::run(QString question, Reply reply)
{
    const CancelHandle life = m_life;
    const Result<QString> answer = co_await askLumo(m_ai, question, life);
    reply(answer);
    if (!life.isCancelled())
        --m_open;
}

}
