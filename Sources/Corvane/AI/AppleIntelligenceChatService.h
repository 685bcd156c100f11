#pragma once

#include "Platform/SystemLanguageModel.h"

namespace corvane {

class MachineFacts;

enum class AppleAIError { Unavailable };
QString describe(AppleAIError error);

/// Text from the platform's own language model.
class AppleIntelligenceChatService {
public:
    /// Both outlive the service.
    AppleIntelligenceChatService(SystemLanguageModel& model, const MachineFacts& machine);

    std::optional<QString> unavailableReason() const; ///< nothing if it is available
    QString displayName() const { return m_model.displayName(); }
    QCoro::Task<> refresh() const { return m_model.refresh(); }

    QCoro::Task<Result<QString>> respond(QString instructions, QString prompt, CancelHandle cancel = {}) const;

    /// If the model is not available: `AppleAIError::Unavailable`.
    QCoro::Task<Result<QJsonObject>> respondGenerating(
        QString instructions, QString prompt, QJsonObject schema, CancelHandle cancel = {}) const;

private:
    bool platformIsTooOld() const;

    SystemLanguageModel& m_model;
    const MachineFacts& m_machine;
};

}
