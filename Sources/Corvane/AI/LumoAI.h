#pragma once

#include "AI/LocalAIModelSpec.h"
#include "Foundation/Cancellation.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class AppleIntelligenceChatService;
class CLIChatService;

/// The single entry point for generated texts: the platform's own model, else the Codex command line tool. If the
/// chosen one fails, that failure is the result; the other is not tried. Errors are for the user. Calls are independent
/// and may overlap.
class LumoAI : public QObject {
    Q_OBJECT
public:
    /// Both outlive this object.
    LumoAI(const AppleIntelligenceChatService& onDevice, const CLIChatService& codex, QObject* parent = nullptr);

    /// Who would answer now; nothing if nobody would. Determined at each call, without waiting, from the known state of
    /// the platform's model.
    std::optional<QString> availableName() const;

    /// The model recorded for a text that is generated now.
    LocalAIModelSpec modelSpec() const;

    /// Checks the platform's model again; takes a few seconds at most.
    QCoro::Task<> refresh();

    /// The unmodified answer.
    QCoro::Task<Result<QString>> respond(QString instructions, QString prompt, CancelHandle cancel = {});

    /// Whether `respondGenerating` would be answered; checks again.
    QCoro::Task<bool> answersUnderSchema();

    /// An answer that matches the JSON schema. Only the platform's model supports schemas.
    QCoro::Task<Result<QJsonObject>> respondGenerating(
        QString instructions, QString prompt, QJsonObject schema, CancelHandle cancel = {});

private:
    const AppleIntelligenceChatService& m_onDevice;
    const CLIChatService& m_codex;
};

}
