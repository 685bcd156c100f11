#pragma once

#include "Inbox/Compose/Attachments.h"
#include "Inbox/Compose/ComposerHints.h"
#include "Inbox/Compose/ComposerVoice.h"
#include "Inbox/Compose/ReplyRouting.h"
#include "Inbox/Compose/UnsentMessages.h"
#include "Inbox/Compose/UnsentTexts.h"

#include <QUrl>

namespace corvane {

/// The input area of the open thread: text, subject and files; its parts hold the rest. The only place from which the
/// user sends directly. Everything else that prepares a text passes it to `apply` and cannot send.
class Composer : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString contactId READ contactId NOTIFY contactChanged) ///< empty if no thread is open
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool canSend READ canSend NOTIFY textChanged)
    Q_PROPERTY(QString subject READ subject WRITE setSubject NOTIFY textChanged)
    Q_PROPERTY(corvane::Attachments* attachments READ attachments CONSTANT)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY undoChanged) ///< the last `apply` can be undone
    Q_PROPERTY(corvane::ReplyRouting* routing READ routing CONSTANT)
    Q_PROPERTY(corvane::ComposerHints* hints READ hints CONSTANT)
    Q_PROPERTY(corvane::ComposerVoice* voice READ voice CONSTANT)
    Q_PROPERTY(corvane::UnsentMessages* unsent READ unsent CONSTANT)
    Q_PROPERTY(QString sendError READ sendError NOTIFY sendErrorChanged)
public:
    enum class Placement { After, Instead };

    struct Surroundings {
        EngineManager& engine;
        AccountStore& accounts;
        UserDefaults& defaults;
        Scheduler& scheduler;
        Microphone& microphone;
        Desktop& desktop;
        VoiceServices& voice;
        QString unsentFolder; ///< keeps what was not sent
    };

    /// Everything outlives the composer.
    explicit Composer(const Surroundings& surroundings, QObject* parent = nullptr);
    ~Composer() override;

    void open(const ContactRow& contact); ///< with an empty id: nobody
    void setSendError(const QString& error); ///< shown until the next attempt
    void requestFocus() { Q_EMIT focusRequested(); }

    const QString& contactId() const { return m_contact.id; }
    QString text() const { return m_texts.message(m_contact.id).text; }
    void setText(const QString& text);
    QString subject() const { return m_texts.message(m_contact.id).subject; }
    void setSubject(const QString& subject);
    Attachments* attachments() { return &m_attachments; }
    bool canSend() const; ///< there is content, and the channel supports it
    bool canUndo() const { return m_beforeApply.has_value(); }
    ReplyRouting* routing() { return &m_routing; }
    ComposerHints* hints() { return &m_hints; }
    ComposerVoice* voice() { return &m_voice; }
    UnsentMessages* unsent() { return &m_unsent; }
    const QString& sendError() const { return m_sendError; }

    /// Puts a prepared text into the field: appended after a blank line, or replacing the text.
    void apply(const QString& text, Placement placement);

    Q_INVOKABLE void undo(); ///< restores the text from before the last `apply`
    Q_INVOKABLE void send();
    Q_INVOKABLE void dismissError() { setSendError({}); }
    Q_INVOKABLE void dropText(const QString& text); ///< dropped on the field
    /// Attaches them; if the channel does not support files, appends their texts and refuses non-text files.
    Q_INVOKABLE void dropFiles(const QList<QUrl>& files);

    /// Inserts dictated text at the cursor, with spaces as needed; returns the new cursor position.
    Q_INVOKABLE int insertDictation(const QString& said, int cursor);
    Q_INVOKABLE void sendVoice();

Q_SIGNALS:
    void contactChanged();
    void textChanged(); ///< or the subject, or the files
    void undoChanged();
    void sendErrorChanged();
    void focusRequested();
    void sent(); ///< a text or a voice note was handed to its engine

private:
    bool sendThrough(const QString& platform, const ReplyRouting::Say& say); ///< shows the error if it failed
    bool sendMessage(const QString& platform, const OutgoingMessage& message);
    void append(const QString& contactId, const QString& said); ///< to the unsent text of a contact that is not open
    void change(const std::function<void(OutgoingMessage& message)>& change); ///< of the unsent message
    void gatherMerged(); ///< texts typed to contacts that have been merged into the open one
    void forgetUndo();

    EngineManager& m_engine;
    UnsentTexts m_texts;
    UnsentMessages m_unsent;
    Attachments m_attachments;
    ReplyRouting m_routing;
    ComposerHints m_hints;
    ComposerVoice m_voice;
    ContactRow m_contact;
    QString m_sendError;
    std::optional<QString> m_beforeApply;
};

}
