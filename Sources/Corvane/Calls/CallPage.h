#pragma once

#include "CRM/ContactPick.h"
#include "Calls/CallProcessing.h"
#include "Calls/CallProposalsView.h"
#include "Calls/CallSnapshot.h"
#include "Calls/CallSoundView.h"
#include "Calls/CallTranscriptView.h"

namespace corvane {

/// A recorded call: its name, state, person, summary, notes and exports. The parts show the rest.
class CallPage : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString callId READ callId NOTIFY changed) ///< empty if none is open
    Q_PROPERTY(QString title READ title WRITE rename NOTIFY changed)
    Q_PROPERTY(QString whenText READ whenText NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(QString tone READ tone NOTIFY changed)
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
    Q_PROPERTY(QString personName READ personName NOTIFY changed) ///< empty if nobody is linked
    Q_PROPERTY(corvane::ContactPick* people READ people CONSTANT)
    Q_PROPERTY(corvane::CallTranscriptView* transcript READ transcript CONSTANT)
    Q_PROPERTY(corvane::CallSoundView* sound READ sound CONSTANT)
    Q_PROPERTY(corvane::CallProcessing* processing READ processing CONSTANT)
    Q_PROPERTY(corvane::CallProposalsView* proposals READ proposals CONSTANT)
    Q_PROPERTY(QList<corvane::CallSummarySection> summary READ summary NOTIFY changed)
    Q_PROPERTY(QString emptySummaryText READ emptySummaryText NOTIFY changed)
    Q_PROPERTY(QString notes READ notes WRITE setNotes NOTIFY changed)
    Q_PROPERTY(QString doneText READ doneText NOTIFY changed) ///< the result of an export
    Q_PROPERTY(QString deleteQuestion READ deleteQuestion NOTIFY changed)
public:
    /// All of them outlive the page.
    CallPage(CallRecorder& recorder, CallPlayer& player, QObject* parent = nullptr);

    void open(const QString& callId, const QString& searched);
    void reload();

    const QString& callId() const { return m_call.details.id; }
    const QString& title() const { return m_call.details.title; }
    QString whenText() const;
    const QString& stateText() const { return m_call.state.words; }
    const QString& tone() const { return m_call.state.tone; }
    QString errorText() const;
    QString personName() const;
    ContactPick* people() { return &m_people; }
    CallTranscriptView* transcript() { return &m_transcript; }
    CallSoundView* sound() { return &m_sound; }
    CallProcessing* processing() { return &m_processing; }
    CallProposalsView* proposals() { return &m_proposals; }
    QList<CallSummarySection> summary() const;
    QString emptySummaryText() const;
    const QString& notes() const { return m_call.notes.text; }
    void setNotes(const QString& text);
    const QString& doneText() const { return m_doneText; }
    QString deleteQuestion() const;

    Q_INVOKABLE void rename(const QString& title); ///< does nothing for a blank title
    Q_INVOKABLE void exportText();
    Q_INVOKABLE void exportSubtitles();
    Q_INVOKABLE void exportSound();
    Q_INVOKABLE void remove(); ///< the call and its files

Q_SIGNALS:
    void changed();
    void removed();

private:
    void show(const QString& callId);
    void tell(const QString& words);

    CallRecorder& m_recorder;
    CallPlayer& m_player;
    ContactPick m_people;
    CallTranscriptView m_transcript;
    CallSoundView m_sound;
    CallProcessing m_processing;
    CallProposalsView m_proposals;
    CallSnapshot m_call;
    QString m_searched;
    QString m_doneText;
};

}
