#pragma once

#include "AI/AIServices.h"
#include "Foundation/Arrival.h"
#include "Foundation/Literals.h"
#include "Platform/MachineFacts.h"
#include "Platform/ToolRunner.h"
#include "Support/VirtualScheduler.h"

#include <deque>
#include <gtest/gtest.h>

namespace corvane {

/// A model that records the questions and gives the answers set by the test, in order. A question without an answer
/// fails the test.
class FakeLanguageModel final : public SystemLanguageModel {
public:
    struct Question {
        QString instructions;
        QString prompt;
        std::optional<QJsonObject> schema;
    };
    /// An answer that `arrive` gives later.
    using Later = Arrival<Result<QJsonObject>>;

    void willAnswer(const QString& text) { willAnswer(QJsonObject { { textKey(), text } }); }
    void willAnswer(const QJsonObject& object)
    {
        const Later later = willAnswerLater();
        later.arrive(object);
    }
    void willFail(const QString& words)
    {
        const Later later = willAnswerLater();
        later.arrive(failure(words));
    }
    /// The question stays open until the test calls `arrive` or the question is cancelled. For a text, pass
    /// `FakeLanguageModel::text("...")`.
    Later willAnswerLater()
    {
        m_answers.push_back({});
        return m_answers.back();
    }
    static QJsonObject text(const QString& text) { return { { textKey(), text } }; }

    void setUnavailable(const QString& reason)
    {
        m_reason = reason;
        Q_EMIT availabilityChanged();
    }
    void setAvailable()
    {
        m_reason.reset();
        Q_EMIT availabilityChanged();
    }

    void choose(const Choice& choice) override { chosen = choice; }
    std::optional<QString> unavailableReason() const override { return m_reason; }
    bool runsElsewhere() const override { return elsewhere; }
    QString modelName() const override { return known.value(0); }
    QString displayName() const override { return u"Fake Model"_s; }
    QStringList models() const override { return known; }
    QCoro::Task<> refresh() override { co_return; }

    QCoro::Task<Result<QString>> respond(QString instructions, QString prompt, CancelHandle cancel) override
    {
        const Result<QJsonObject> answer = co_await ask({ instructions, prompt, std::nullopt }, cancel);
        if (!answer)
            co_return std::unexpected(answer.error());
        co_return answer->value(textKey()).toString();
    }
    QCoro::Task<Result<QJsonObject>> respondGenerating(
        QString instructions, QString prompt, QJsonObject schema, CancelHandle cancel) override
    {
        return ask({ instructions, prompt, schema }, cancel);
    }

    QList<Question> asked;
    QStringList known { u"fake:1b"_s };
    Choice chosen;
    bool elsewhere = false;

private:
    static QString textKey() { return u"text"_s; }

    QCoro::Task<Result<QJsonObject>> ask(Question question, CancelHandle cancel)
    {
        asked.append(question);
        if (m_answers.empty()) {
            ADD_FAILURE() << "a question that nobody expected: " << qPrintable(question.prompt);
            co_return failure(u"nobody told what to answer"_s);
        }
        const Later answer = m_answers.front();
        m_answers.pop_front();
        const auto watch = cancel.onCancel([answer] {
            if (!answer.hasArrived())
                answer.arrive(cancelled());
        });
        co_return co_await answer;
    }

    std::optional<QString> m_reason;
    std::deque<Later> m_answers;
};

/// Machine facts set by the test.
class FakeMachineFacts final : public MachineFacts {
public:
    SystemVersion version() const override { return running; }
    SystemVersion minimumVersion() const override { return minimum; }
    MachineState state() const override { return now; }

    SystemVersion running { 6, 1, 0 };
    SystemVersion minimum { 5, 10, 0 };
    MachineState now;
};

/// Fails the test if any tool is run.
class NoTools final : public ToolRunner {
public:
    QCoro::Task<Result<ToolEnd>> run(QString executable, QStringList, QByteArray, CancelHandle) override
    {
        ADD_FAILURE() << "a tool that nobody expected: " << qPrintable(executable);
        co_return failure(u"no tools"_s);
    }
};

struct FakeAIMachine {
    FakeLanguageModel model;
    FakeMachineFacts machine;
    NoTools tools;
    VirtualScheduler standing; ///< never advances
};

/// The AI services over a fake model, without the Codex tool.
struct FakeLumo : FakeAIMachine, AIServices {
    FakeLumo()
        : AIServices(model, machine, tools, {}, standing)
    {
    }
    explicit FakeLumo(const Scheduler& clock)
        : AIServices(model, machine, tools, {}, clock)
    {
    }
};

}
