#pragma once

#include "Calls/CallPlayer.h"
#include "Calls/CallProcessor.h"
#include "Calls/CallSnapshot.h"
#include "Presentation/Choice.h"

namespace corvane {

/// Transcribes and summarizes a call: what can be started, how far it is, and the consent for Codex.
class CallProcessing : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY progressed) ///< of the transcript, from 0 to 1
    Q_PROPERTY(QString label READ label NOTIFY changed) ///< of `start`; empty if impossible
    /// The models that can transcribe it, if there are several; and the one that did.
    Q_PROPERTY(QList<corvane::Choice> models READ models NOTIFY changed)
    Q_PROPERTY(QString model READ model NOTIFY changed)
    Q_PROPERTY(bool asksCodex READ asksCodex NOTIFY changed)
    Q_PROPERTY(QString codexQuestion READ codexQuestion CONSTANT)
public:
    /// Both outlive the object.
    CallProcessing(CallRecorder& recorder, CallPlayer& player, QObject* parent = nullptr);

    void show(const CallSnapshot& call);

    bool busy() const { return m_call.isBusy; }
    double progress() const;
    QString label() const;
    QList<Choice> models() const;
    QString model() const;
    bool asksCodex() const;
    QString codexQuestion() const;

    Q_INVOKABLE void start(); ///< transcribes now, again, or after a crash
    Q_INVOKABLE void startWith(const QString& model); ///< the same, with one of `models`
    Q_INVOKABLE void stop();
    Q_INVOKABLE void answerCodex(bool allowed);

Q_SIGNALS:
    void changed();
    void progressed();
    void refused(); ///< Codex; the call's row was updated

private:
    CallJob job() const;
    void run(const CallJob& job);

    CallRecorder& m_recorder;
    CallProcessor& m_processor;
    CallPlayer& m_player;
    CallSnapshot m_call;
};

}
