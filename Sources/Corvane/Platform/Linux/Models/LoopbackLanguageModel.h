#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/Linux/Models/ModelServer.h"
#include "Platform/SystemLanguageModel.h"

#include <QNetworkAccessManager>

namespace corvane {

/// A model server on this machine: the chosen one, else Ollama or a llama.cpp server at its default port. No request
/// goes to another machine: no proxy, no redirect, no name lookup.
class LoopbackLanguageModel final : public SystemLanguageModel {
    Q_OBJECT
public:
    /// Where to look if nothing was chosen.
    LoopbackLanguageModel(Scheduler& scheduler, const QStringList& usualServers);
    ~LoopbackLanguageModel() override; ///< ends every request with a failure

    void choose(const Choice& choice) override;
    std::optional<QString> unavailableReason() const override;
    QString displayName() const override;
    bool runsElsewhere() const override;
    QString modelName() const override { return model().name; }
    QStringList models() const override;
    QCoro::Task<> refresh() override;
    QCoro::Task<Result<QString>> respond(QString instructions, QString prompt, CancelHandle cancel) override;
    QCoro::Task<Result<QJsonObject>> respondGenerating(
        QString instructions, QString prompt, QJsonObject schema, CancelHandle cancel) override;

private:
    /// The result of the last check.
    struct Known {
        std::optional<ModelServer> server;
        QList<ServedModel> models;
        QString reason; ///< why there is no server

        bool operator==(const Known&) const = default;
    };

    QCoro::Task<Known> look(QStringList servers);
    QCoro::Task<std::optional<Known>> lookAt(QUrl base);
    QCoro::Task<Result<HttpReply>> get(QUrl url);
    QCoro::Task<Result<QString>> ask(ModelQuestion question, CancelHandle cancel);
    void lookAgainAfter(Milliseconds pause);
    ServedModel model() const; ///< the chosen one, else the first that runs on this machine, else the first

    Scheduler& m_scheduler;
    const QStringList m_usualServers;
    // Separate, so that a check never waits for a free connection behind long answers.
    QNetworkAccessManager m_looks;
    QNetworkAccessManager m_answers;
    CancelHandle m_end; ///< cancelled with this object
    Choice m_choice;
    Known m_known;
    std::unique_ptr<Timer> m_lookAgain;
};

}
