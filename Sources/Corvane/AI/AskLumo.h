#pragma once

#include "Foundation/Cancellation.h"

#include <QString>
#include <functional>
#include <qcoro/qcorotask.h>

namespace corvane {

class LumoAI;

/// Answers a question from outside the window, without access to the database. A blank question gets a fixed answer.
QCoro::Task<Result<QString>> askLumo(LumoAI& ai, QString question, CancelHandle cancel = {});

/// Answers the questions of other programs, a few at a time.
class LumoQuestions {
public:
    using Reply = std::function<void(const Result<QString>& answer)>;

    explicit LumoQuestions(LumoAI& ai); ///< `ai` outlives the object
    ~LumoQuestions(); ///< cancels pending questions, and answers them so
    LumoQuestions(const LumoQuestions&) = delete;
    LumoQuestions& operator=(const LumoQuestions&) = delete;

    void ask(const QString& question, Reply reply);

private:
    QCoro::Task<> run(QString question, Reply reply);

    LumoAI& m_ai;
    const CancelHandle m_life;
    int m_open = 0;
};

}
