#include "Inbox/Compose/ComposerVoice.h"

#include "Foundation/Literals.h"
#include "Store/People/IdentityQueries.h"

#include <QDir>

namespace corvane {

ComposerVoice::ComposerVoice(LocalDB& db, VoiceServices& voice, Microphone& microphone, Scheduler& scheduler,
    UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_note(microphone, scheduler, QDir::tempPath())
    , m_dictation(voice, microphone, scheduler, defaults)
{
    connect(&m_note, &VoiceRecorder::stateChanged, this, &ComposerVoice::changed);
    connect(&m_dictation, &ComposerDictation::dictated, this, [this](const QString& contactId, const QString& said) {
        if (isOpen(contactId))
            Q_EMIT dictated(said);
        else
            Q_EMIT dictatedTo(contactId, said);
    });
}

void ComposerVoice::open(const QString& contactId)
{
    if (contactId != m_contactId) {
        if (showsNote())
            m_note.leave();
        m_dictation.finish();
        m_contactId = contactId;
        m_note.dismissNotice();
    }
    Q_EMIT changed();
}

bool ComposerVoice::isOpen(const QString& contactId) const
{
    return personBehind(m_db, contactId) == m_contactId;
}

bool ComposerVoice::showsNote() const
{
    return !m_note.idle() && isOpen(m_note.contactId());
}

void ComposerVoice::startNote()
{
    if (m_contactId.isEmpty())
        return;
    if (m_note.idle())
        m_note.start(m_contactId);
    else if (!showsNote())
        Q_EMIT refused(u"A voice note to another contact waits: send or discard it first."_s);
}

void ComposerVoice::dictate()
{
    if (m_dictation.active())
        m_dictation.finish();
    else if (!showsNote())
        m_dictation.start(m_contactId);
}

}
