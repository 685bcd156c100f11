#pragma once

#include "Inbox/Compose/ComposerDictation.h"
#include "Inbox/Compose/VoiceRecorder.h"

namespace corvane {

class LocalDB;

/// What is spoken to the open contact: a voice note, or words dictated into the field; one of them at a time.
class ComposerVoice : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::VoiceRecorder* note READ note CONSTANT)
    Q_PROPERTY(bool showsNote READ showsNote NOTIFY changed) ///< it is the open contact's
    Q_PROPERTY(corvane::ComposerDictation* dictation READ dictation CONSTANT)
public:
    /// All of them outlive the object.
    ComposerVoice(LocalDB& db, VoiceServices& voice, Microphone& microphone, Scheduler& scheduler,
        UserDefaults& defaults, QObject* parent = nullptr);

    /// With an empty id: nobody. What is being dictated goes to the contact for whom it was started.
    void open(const QString& contactId);

    VoiceRecorder* note() { return &m_note; }
    bool showsNote() const;
    ComposerDictation* dictation() { return &m_dictation; }

    Q_INVOKABLE void startNote();
    Q_INVOKABLE void dictate(); ///< starts, or finishes and inserts the text

Q_SIGNALS:
    void changed();
    void refused(const QString& why);
    void dictated(const QString& text); ///< to the open contact: insert it at the cursor
    void dictatedTo(const QString& contactId, const QString& text); ///< to another one

private:
    bool isOpen(const QString& contactId) const; ///< or was merged into the open one

    LocalDB& m_db;
    VoiceRecorder m_note;
    ComposerDictation m_dictation;
    QString m_contactId;
};

}
