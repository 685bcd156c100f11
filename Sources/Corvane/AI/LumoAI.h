#pragma once

#include "AI/LocalAIModelSpec.h"
#include "Foundation/Cancellation.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class AppleIntelligenceChatService;
class CLIChatService;

/// The one call that every generated text goes through: the platform's own model, else the Codex command line
/// tool. Whichever was chosen, its failure is the result; the other is not tried. A failure carries words for
/// the user. Calls stand alone and may overlap.
class LumoAI : public QObject {
    Q_OBJECT
public:
    /// Both outlive this object.
    LumoAI(const AppleIntelligenceChatService& onDevice, const CLIChatService& codex, QObject* parent = nullptr);

    /// Who would answer now; nothing where nobody would. Decided at each call, without waiting, by what is known of
    /// the platform's model.
    std::optional<QString> availableName() const;

    /// What a text that is made now records as its maker.
    LocalAIModelSpec modelSpec() const;

    /// Looks at the platform's model afresh; a few seconds at most.
    QCoro::Task<> refresh();

    /// The answer as it came.
    QCoro::Task<Result<QString>> respond(QString instructions, QString prompt, CancelHandle cancel = {});

    /// Whether `respondGenerating` would be answered, found out afresh.
    QCoro::Task<bool> answersUnderSchema();

    /// An answer that fits the JSON schema. Only the platform's model answers under a schema.
    QCoro::Task<Result<QJsonObject>> respondGenerating(
        QString instructions, QString prompt, QJsonObject schema, CancelHandle cancel = {});

private:
    const AppleIntelligenceChatService& m_onDevice;
    const CLIChatService& m_codex;
};

}
