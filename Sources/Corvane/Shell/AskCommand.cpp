#include "Shell/AskCommand.h"

#include "AI/AIServices.h"
#include "AI/AskLumo.h"
#include "AI/ModelChoice.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Platform/SystemLanguageModel.h"
#include "Platform/ToolRunner.h"

#include <QTextStream>

namespace corvane {

namespace {

Result<QString> answerHere(const AppPaths& paths, const QString& question)
{
    SystemScheduler scheduler;
    const UserDefaults defaults(paths.defaultsFile);
    const auto model = makeLanguageModel(scheduler);
    const auto machine = makeMachineFacts(paths);
    const auto tools = makeToolRunner();
    AIServices ai(*model, *machine, *tools, codexCandidates(paths.home), scheduler);
    model->choose(modelChoice(defaults));
    return QCoro::waitFor(askLumo(ai.ai, question));
}

}

int askQuestion(const AppPaths& paths, const QStringList& words, QTextStream& out, QTextStream& errors)
{
    const QString question = words.join(u' ');
    const auto told = question.trimmed().isEmpty() ? std::nullopt : askRunningProgram(paths, question);
    const Result<QString> answer = told ? *told : answerHere(paths, question);
    (answer ? out : errors) << (answer ? *answer : answer.error().message).trimmed() << Qt::endl;
    return answer && !question.trimmed().isEmpty() ? 0 : 1;
}

}
