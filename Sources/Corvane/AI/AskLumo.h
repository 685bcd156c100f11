#pragma once

#include "Foundation/Cancellation.h"

#include <QString>
#include <functional>
#include <qcoro/qcorotask.h>

namespace corvane {

class LumoAI;

/// The answer to a question from outside of the window, which sees nothing of the database. A blank one is told so.
QCoro::Task<Result<QString>> askLumo(LumoAI& ai, QString question, CancelHandle cancel = {});

/// Answers the questions of other programs, a few at a time.
class LumoQuestions {
public:
    using Reply = std::function<void(const Result<QString>& answer)>;

    explicit LumoQuestions(LumoAI& ai); ///< which outlives the object
    ~LumoQuestions(); ///< what is still open is cancelled, and replied to
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
