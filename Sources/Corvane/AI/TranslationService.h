#pragma once

#include "Foundation/Cancellation.h"

#include <QHash>
#include <QObject>
#include <QUuid>
#include <qcoro/qcorotask.h>

namespace corvane {

class MachineFacts;

struct TranslationRequest {
    QUuid id;
    QString text;
    QString targetLanguage; ///< as the user entered it
    QString target; ///< a language code, such as "bn"
};

struct TranslationServiceOutput {
    QString text;
    QString targetLanguage;
    QString modelName;
    QStringList warnings;
};

class TranslationServiceError {
public:
    static Error unavailable(const QString& words);
    static Error unsupportedTarget(const QString& language);
    static Error missingHost();
};

/// Passes texts to a local translator and returns its answers. The translator is a host that takes requests from
/// `activeRequest`; without one every translation fails at once.
class TranslationService : public QObject {
    Q_OBJECT
public:
    using StatusHandler = std::function<void(const QString& words)>;

    /// `machine` outlives the service.
    explicit TranslationService(const MachineFacts& machine, QObject* parent = nullptr);
    ~TranslationService() override; ///< pending requests fail

    /// The languages for a menu, by name.
    static QStringList languages();

    /// The code of a language given by name or code; nothing for any other text.
    static std::optional<QString> language(const QString& name);

    /// The error is for the user. `onStatus` is called until the end.
    QCoro::Task<Result<TranslationServiceOutput>> translate(
        QString text, QString targetLanguage, StatusHandler onStatus, CancelHandle cancel = {});

    // For the host
    void setHost(bool isThere); ///< without a host, pending requests fail
    const std::optional<TranslationRequest>& activeRequest() const { return m_activeRequest; }
    void updateStatus(const TranslationRequest& request, const QString& words);
    void finish(const TranslationRequest& request, const TranslationServiceOutput& output);
    void fail(const TranslationRequest& request, const Error& error);

private:
    using Outcome = Result<TranslationServiceOutput>;
    struct Waiting;

    void end(const QUuid& id, const Outcome& outcome); ///< once per request; a second call has no effect

    const MachineFacts& m_machine;
    QHash<QUuid, std::shared_ptr<Waiting>> m_waiting;
    std::optional<TranslationRequest> m_activeRequest;
    bool m_hasHost = false;
};

}
