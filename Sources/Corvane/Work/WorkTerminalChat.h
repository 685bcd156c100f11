#pragma once

#include "Foundation/Cancellation.h"
#include "Foundation/Literals.h"
#include "Presentation/Choice.h"
#include "Presentation/RowListModel.h"
#include "Store/Work/OpsRecords.h"
#include "Work/WorkConsoleConfig.h"
#include "Work/WorkServices.h"

#include <qcoro/qcorotask.h>

namespace corvane {

/// The assistant's instructions for answering from a context.
QString terminalChatInstructions();

/// The assistant's input: the rows of a context, followed by the question.
QString terminalChatPrompt(LocalDB& db, const WorkContextRow& context, const QString& question);

/// A line of the thread.
class WorkChatSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString speaker MEMBER speaker)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString time MEMBER time)
    Q_PROPERTY(bool isOskel MEMBER isOskel)
    Q_PROPERTY(QString tone MEMBER tone)
    Q_PROPERTY(QList<corvane::Choice> sources MEMBER sources)
    Q_PROPERTY(QString aloud MEMBER aloud)
public:
    QString id;
    QString speaker;
    QString body;
    QString time;
    bool isOskel = false; ///< by the user
    QString tone; ///< "answer", "bad", "system" or empty
    QList<Choice> sources; ///< rows that an answer cites: "item:{id}" or "evidence:{id}"
    QString aloud;

    static constexpr const char* role = "line";
    const QString& key() const { return id; }
    bool operator==(const WorkChatSeed&) const = default;
};

/// Questions about one context, answered only from its rows. Questions and answers are rows, too.
class WorkTerminalChat : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* lines READ lines CONSTANT)
    Q_PROPERTY(bool contextAvailable READ contextAvailable NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString status READ status NOTIFY changed)
    Q_PROPERTY(bool statusIsError READ statusIsError NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(QString earlierText READ earlierText NOTIFY changed) ///< empty if every line is shown
    Q_PROPERTY(QString log READ log NOTIFY changed) ///< the context as lines of a session
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(QString actionLabel READ actionLabel NOTIFY changed)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
public:
    WorkTerminalChat(const WorkServices& services, QObject* parent);
    ~WorkTerminalChat() override; ///< cancels what is running

    void setContext(const QString& module, const WorkContext& context);
    void reload();

    GadgetListModel* lines() { return &m_lines; }
    bool contextAvailable() const { return m_context.has_value(); }
    bool busy() const { return m_running.has_value(); }
    QString status() const;
    bool statusIsError() const { return !busy() && !m_error.isEmpty(); }
    QString emptyTitle() const;
    QString emptyText() const;
    QString earlierText() const;
    const QString& log() const { return m_log; }
    QString placeholder() const { return u"Ask about this terminal/context..."_s; }
    QString actionLabel() const { return busy() ? u"Asking"_s : u"Ask"_s; }
    QString hint() const;

    /// True if the question was accepted: the thread has it then.
    Q_INVOKABLE bool ask(const QString& question);
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void showEarlier();

    /// Answers a question from the list of asks, from the given context, else from the one that is shown.
    void answerAsk(const OpsAskRow& ask, const WorkContext& context = {});
    void dismissError();

Q_SIGNALS:
    void changed();
    void wrote();

private:
    QCoro::Task<> run(WorkContextRow context, QString question, std::optional<QString> askId);
    void end(const QString& error);
    bool post(const WorkContextRow& context, const QString& speaker, const QString& role, const QString& kind,
        const QString& body);

    const WorkServices m_at;
    QString m_module;
    WorkContext m_context;
    std::optional<CancelHandle> m_running;
    QString m_error;
    QString m_log;
    int m_shown;
    bool m_hasEarlier = false;
    RowListModel<WorkChatSeed> m_lines;
};

}
