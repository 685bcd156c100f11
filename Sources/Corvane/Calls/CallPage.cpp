#include "Calls/CallPage.h"

#include "Calls/CallExport.h"
#include "Calls/CallRecorder.h"
#include "Calls/RecordedCalls.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/WAName.h"
#include "Presentation/DateWords.h"
#include "Presentation/Downloads.h"
#include "Presentation/PlayTime.h"
#include "Store/Work/CallWrites.h"

#include <QPointer>

namespace corvane {

CallPage::CallPage(CallRecorder& recorder, CallPlayer& player, QObject* parent)
    : QObject(parent)
    , m_recorder(recorder)
    , m_player(player)
    , m_people(recorder.recorded().db(),
          [this](const QString& call, const QString& contact) {
              const bool linked = linkCall(m_recorder.recorded().db(), call, contact);
              m_recorder.recorded().refresh();
              return linked;
          })
    , m_transcript(player)
    , m_sound(player)
    , m_processing(recorder, player)
    , m_proposals(recorder.recorded())
{
    connect(&m_recorder.recorded(), &RecordedCalls::changed, this, &CallPage::reload);
    connect(&m_recorder, &CallRecorder::changed, this, &CallPage::reload);
    connect(&m_processing, &CallProcessing::refused, this, &CallPage::reload);
    connect(&m_proposals, &CallProposalsView::refused, this, &CallPage::tell);
}

void CallPage::open(const QString& callId, const QString& searched)
{
    if (callId != this->callId()) {
        m_player.stop();
        m_people.cancel();
        m_doneText.clear();
    }
    m_searched = searched;
    show(callId);
    m_transcript.leadToHit();
}

void CallPage::reload()
{
    show(callId());
}

void CallPage::show(const QString& callId)
{
    m_call = readCall(m_recorder, callId);
    m_sound.show(m_call);
    m_transcript.show(m_call, m_searched);
    m_processing.show(m_call);
    m_proposals.show(m_call.details.id);
    Q_EMIT changed();
}

QString CallPage::whenText() const
{
    const CallDetails& call = m_call.details;
    if (!m_call.exists())
        return {};
    const DateWords words(m_recorder.surroundings().scheduler.nowMs());
    QStringList parts { words.group(call.startedAt), words.clockTime(call.startedAt) };
    if (call.durationMs > 0)
        parts.append(playTime(call.durationMs));
    return parts.join(u" · "_s);
}

QString CallPage::errorText() const
{
    return m_call.isBusy || m_call.isRecordedNow ? QString() : m_call.details.processingError;
}

QString CallPage::personName() const
{
    const QString& name = m_call.details.contactName;
    return name.isEmpty() ? QString() : WAName::pretty(name);
}

QList<CallSummarySection> CallPage::summary() const
{
    return summarySections(m_call.details.summary);
}

QString CallPage::emptySummaryText() const
{
    if (!m_call.exists() || !m_call.details.summary.isEmpty())
        return {};
    return m_call.isBusy || m_call.isRecordedNow ? u"The summary follows the transcript."_s : u"There is no summary."_s;
}

QString CallPage::deleteQuestion() const
{
    return u"“%1” is removed with its sound, transcript and summary. What was added to the CRM stays."_s.arg(title());
}

void CallPage::rename(const QString& title)
{
    const QString named = title.trimmed();
    if (!m_call.exists() || named.isEmpty() || named == this->title())
        return;
    renameCall(m_recorder.recorded().db(), callId(), named);
    m_recorder.recorded().refresh();
}

void CallPage::setNotes(const QString& text)
{
    if (!m_call.exists() || text == notes())
        return;
    m_call.notes = readCallNotes(m_call.folder);
    m_call.notes.text = text;
    if (!writeCallNotes(m_call.folder, m_call.notes))
        tell(u"The notes can't be saved."_s);
}

void CallPage::tell(const QString& words)
{
    m_doneText = words;
    Q_EMIT changed();
}

void CallPage::exportText()
{
    if (m_call.exists())
        tell(saveDownload(title(), u"txt"_s, callAsText(m_call.details, m_call.turns, m_call.notes).toUtf8()));
}

void CallPage::exportSubtitles()
{
    if (m_call.exists())
        tell(m_call.turns.isEmpty() ? m_transcript.emptyText()
                                    : saveDownload(title(), u"vtt"_s, webVtt(m_call.turns).toUtf8()));
}

void CallPage::exportSound()
{
    if (!m_call.exists())
        return;
    tell(u"Saving the sound…"_s);
    m_recorder.surroundings().background.run<QString>(
        [call = m_call.details, paths = QStringList { m_call.microphonePath, m_call.systemPath }] {
            return exportSoundOf(call, paths);
        },
        [self = QPointer(this), id = callId()](const QString& words) {
            if (self && self->callId() == id)
                self->tell(words);
        });
}

void CallPage::remove()
{
    if (!m_call.exists() || m_call.isRecordedNow)
        return;
    m_processing.stop();
    m_player.stop();
    const QString files = m_call.folder;
    if (!deleteCall(m_recorder.recorded().db(), callId()))
        return tell(u"The call can't be deleted now."_s);
    removeCallFiles(m_recorder.surroundings().paths, files);
    m_call = {};
    m_recorder.recorded().refresh();
    reload();
    Q_EMIT removed();
}

}
