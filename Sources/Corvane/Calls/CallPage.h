#pragma once

#include "CRM/ContactPick.h"
#include "Calls/CallNotes.h"
#include "Calls/CallPlayer.h"
#include "Calls/CallProcessor.h"
#include "Calls/CallRows.h"
#include "Calls/CallWaveform.h"
#include "Presentation/Choice.h"
#include "Presentation/RowListModel.h"

namespace corvane {

class CallRecorder;

/// A recorded call: its sound, transcript, summary and proposals.
class CallPage : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString callId READ callId NOTIFY changed) ///< empty if none is open
    Q_PROPERTY(QString title READ title WRITE rename NOTIFY changed)
    Q_PROPERTY(QString whenText READ whenText NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(QString tone READ tone NOTIFY changed)
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
    Q_PROPERTY(QString personName READ personName NOTIFY changed) ///< empty if nobody is linked
    Q_PROPERTY(QString personId READ personId NOTIFY changed)
    Q_PROPERTY(corvane::ContactPick* people READ people CONSTANT)
    Q_PROPERTY(corvane::CallPlayer* player READ player CONSTANT)
    Q_PROPERTY(bool hasSound READ hasSound NOTIFY changed)
    Q_PROPERTY(QString noSoundText READ noSoundText NOTIFY changed)
    Q_PROPERTY(QList<float> microphoneBars READ microphoneBars NOTIFY changed)
    Q_PROPERTY(QList<float> systemBars READ systemBars NOTIFY changed)
    Q_PROPERTY(QList<double> marks READ marks NOTIFY changed) ///< from 0 to 1
    Q_PROPERTY(QStringList markTimes READ markTimes NOTIFY changed)
    Q_PROPERTY(corvane::GadgetListModel* turns READ turns CONSTANT)
    Q_PROPERTY(int currentTurn READ currentTurn NOTIFY moved) ///< the one being played; -1 for none
    Q_PROPERTY(int firstHit READ firstHit NOTIFY changed) ///< the first search hit; -1 for none
    Q_PROPERTY(QString emptyTranscriptText READ emptyTranscriptText NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY progressed) ///< of the transcript, from 0 to 1
    Q_PROPERTY(QString processLabel READ processLabel NOTIFY changed) ///< label of `process`; empty if impossible
    /// The models that can transcribe it, if there are several; and the one that did.
    Q_PROPERTY(QList<corvane::Choice> models READ models NOTIFY changed)
    Q_PROPERTY(QString model READ model NOTIFY changed)
    Q_PROPERTY(bool asksCodex READ asksCodex NOTIFY changed)
    Q_PROPERTY(QString codexQuestion READ codexQuestion CONSTANT)
    Q_PROPERTY(QList<corvane::CallSummarySection> summary READ summary NOTIFY changed)
    Q_PROPERTY(QString emptySummaryText READ emptySummaryText NOTIFY changed)
    Q_PROPERTY(QList<corvane::CallProposalRow> proposals READ proposals NOTIFY changed)
    Q_PROPERTY(QString notes READ notes WRITE setNotes NOTIFY changed)
    Q_PROPERTY(QString doneText READ doneText NOTIFY changed) ///< the result of an export
    Q_PROPERTY(QString deleteQuestion READ deleteQuestion NOTIFY changed)
public:
    /// All of them outlive the page.
    CallPage(CallRecorder& recorder, CallPlayer& player, QObject* parent = nullptr);

    void open(const QString& callId, const QString& searched);
    void reload();

    QString callId() const { return m_call ? m_call->id : QString(); }
    QString title() const { return m_call ? m_call->title : QString(); }
    QString whenText() const;
    QString stateText() const { return m_state.words; }
    QString tone() const { return m_state.tone; }
    QString errorText() const;
    QString personName() const;
    QString personId() const { return m_call ? m_call->contactId : QString(); }
    ContactPick* people() { return &m_people; }
    CallPlayer* player() { return &m_player; }
    bool hasSound() const { return !m_microphonePath.isEmpty() || !m_systemPath.isEmpty(); }
    QString noSoundText() const;
    QList<float> microphoneBars() const;
    QList<float> systemBars() const;
    QList<double> marks() const;
    QStringList markTimes() const;
    GadgetListModel* turns() { return &m_turnRows; }
    int currentTurn() const;
    int firstHit() const;
    QString emptyTranscriptText() const;
    bool busy() const;
    double progress() const;
    QString processLabel() const;
    QList<Choice> models() const;
    QString model() const;
    bool asksCodex() const;
    QString codexQuestion() const;
    QList<CallSummarySection> summary() const;
    QString emptySummaryText() const;
    const QList<CallProposalRow>& proposals() const { return m_proposals; }
    const QString& notes() const { return m_notes.text; }
    void setNotes(const QString& text);
    const QString& doneText() const { return m_doneText; }
    QString deleteQuestion() const;

    Q_INVOKABLE void rename(const QString& title); ///< does nothing for a blank title
    Q_INVOKABLE void playTurn(int number);
    Q_INVOKABLE void playMark(int number);
    Q_INVOKABLE void process(); ///< transcribes now, again, or after a crash
    Q_INVOKABLE void processWith(const QString& model); ///< the same, with one of `models`
    Q_INVOKABLE void stopWork();
    Q_INVOKABLE void answerCodex(bool allowed);
    Q_INVOKABLE void applyProposal(const QString& id);
    Q_INVOKABLE void rejectProposal(const QString& id);
    Q_INVOKABLE void exportText();
    Q_INVOKABLE void exportSubtitles();
    Q_INVOKABLE void exportSound();
    Q_INVOKABLE void remove(); ///< the call and its files

Q_SIGNALS:
    void changed();
    void moved();
    void progressed();
    void removed();

private:
    QString folder() const; ///< of the call's files
    bool isRecordedNow() const; ///< or its files are being finalised
    CallJob job() const;
    void process(const CallJob& work);
    void tell(const QString& words);
    void decide(const QString& id, bool apply);

    CallRecorder& m_recorder;
    CallPlayer& m_player;
    ContactPick m_people;
    std::optional<CallDetails> m_call;
    CallState m_state;
    QString m_searched;
    QString m_microphonePath; ///< only if the file exists
    QString m_systemPath;
    QList<CallTurn> m_turns;
    RowListModel<CallTurnRow> m_turnRows;
    CallWaveform m_waveform;
    CallNotes m_notes;
    QList<CallProposalRow> m_proposals;
    QHash<QString, QString> m_seenProposals; ///< their hashes as shown
    QString m_doneText;
};

}
