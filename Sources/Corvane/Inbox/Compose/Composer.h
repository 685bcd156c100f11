#pragma once

#include "Inbox/Compose/Attachments.h"
#include "Inbox/Compose/ComposerDictation.h"
#include "Inbox/Compose/UnsentMessages.h"
#include "Inbox/Compose/UnsentTexts.h"
#include "Inbox/Compose/VoiceRecorder.h"
#include "Presentation/Choice.h"
#include "Store/Messages/InboxQueries.h"

#include <QUrl>

namespace corvane {

class AccountStore;
class EngineManager;
class UserDefaults;
struct Account;

/// The input area of the open thread: text, subject, files, reply channel and voice note. The only place from which the
/// user sends directly. Everything else that prepares a text passes it to `apply` and cannot send.
class Composer : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString contactId READ contactId NOTIFY contactChanged) ///< empty if no thread is open
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool canSend READ canSend NOTIFY textChanged)
    Q_PROPERTY(bool takesSubject READ takesSubject NOTIFY featuresChanged)
    Q_PROPERTY(QString subject READ subject WRITE setSubject NOTIFY textChanged)
    Q_PROPERTY(corvane::Attachments* attachments READ attachments CONSTANT)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY undoChanged) ///< the last `apply` can be undone
    Q_PROPERTY(QList<corvane::Choice> replyPlatforms READ replyPlatforms NOTIFY contactChanged)
    Q_PROPERTY(QString replyPlatform READ replyPlatform WRITE setReplyPlatform NOTIFY replyPlatformChanged)
    Q_PROPERTY(QString replyPlatformLabel READ replyPlatformLabel NOTIFY replyPlatformChanged)
    Q_PROPERTY(QString placeholder READ placeholder NOTIFY hintsChanged)
    Q_PROPERTY(bool returnSends READ returnSends NOTIFY hintsChanged) ///< Ctrl+Return always sends
    Q_PROPERTY(QString sendKeys READ sendKeys NOTIFY hintsChanged)
    Q_PROPERTY(QString sendError READ sendError NOTIFY sendErrorChanged)
    Q_PROPERTY(corvane::HoldingListModel* unsent READ unsent CONSTANT) ///< of UnsentMessageItem, that failed
    Q_PROPERTY(bool editing MEMBER m_editing NOTIFY editingChanged) ///< the field has the focus
    Q_PROPERTY(corvane::VoiceRecorder* voice READ voice CONSTANT)
    Q_PROPERTY(corvane::ComposerDictation* dictation READ dictation CONSTANT)
    Q_PROPERTY(bool showsVoice READ showsVoice NOTIFY voiceShown) ///< the open contact's voice note
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
    bool takesSubject() const { return m_features.subject; }
    QString subject() const { return m_texts.message(m_contact.id).subject; }
    void setSubject(const QString& subject);
    Attachments* attachments() { return &m_attachments; }
    bool canSend() const; ///< there is content, and the channel supports it
    bool canUndo() const { return m_beforeApply.has_value(); }
    QList<Choice> replyPlatforms() const;
    const QString& replyPlatform() const { return m_replyPlatform; }
    void setReplyPlatform(const QString& platform); ///< must be a channel of the contact
    QString replyPlatformLabel() const;
    QString placeholder() const;
    bool returnSends() const;
    QString sendKeys() const;
    const QString& sendError() const { return m_sendError; }
    HoldingListModel* unsent() { return &m_unsent.rows(); }
    VoiceRecorder* voice() { return &m_voice; }
    ComposerDictation* dictation() { return &m_dictation; }
    bool showsVoice() const;

    /// Puts a prepared text into the field: appended after a blank line, or replacing the text.
    void apply(const QString& text, Placement placement);

    Q_INVOKABLE void undo(); ///< restores the text from before the last `apply`
    Q_INVOKABLE void send();
    Q_INVOKABLE void retry(const QString& id); ///< resends a message that failed
    Q_INVOKABLE void discard(const QString& id) { m_unsent.discard(id); }
    Q_INVOKABLE void dismissError() { setSendError({}); }
    Q_INVOKABLE void dropText(const QString& text); ///< dropped on the field
    /// Attaches them; if the channel does not support files, appends their texts and refuses non-text files.
    Q_INVOKABLE void dropFiles(const QList<QUrl>& files);
    Q_INVOKABLE void startVoice();
    Q_INVOKABLE void dictate(); ///< starts, or finishes and inserts the text

    /// Inserts dictated text at the cursor, with spaces as needed; returns the new cursor position.
    Q_INVOKABLE int insertDictation(const QString& said, int cursor);
    Q_INVOKABLE void sendVoice();

Q_SIGNALS:
    void contactChanged();
    void textChanged(); ///< or the subject, or the files
    void featuresChanged();
    void undoChanged();
    void replyPlatformChanged();
    void hintsChanged();
    void sendErrorChanged();
    void editingChanged();
    void voiceShown();
    void focusRequested();
    void dictated(const QString& text); ///< insert it at the cursor
    void sent(); ///< a text or a voice note was handed to its engine

private:
    /// Passes the open contact's conversation on the channel to `say`; sets the error if there is none, or if the
    /// engine does not accept it. True if it was accepted.
    bool sendThrough(
        const QString& platform, const std::function<bool(const Account& account, const QString& chatId)>& say);
    void takeDictation(const QString& contactId, const QString& text);
    bool sendMessage(const QString& platform, const OutgoingMessage& message);
    void readFeatures(); ///< of the account for the reply
    void change(const std::function<void(OutgoingMessage& message)>& change); ///< of the unsent message
    void gatherMerged(); ///< texts typed to contacts that have been merged into the open one
    void forgetUndo();

    EngineManager& m_engine;
    AccountStore& m_accounts;
    UserDefaults& m_defaults;
    UnsentTexts m_texts;
    UnsentMessages m_unsent;
    Attachments m_attachments;
    VoiceRecorder m_voice;
    ComposerDictation m_dictation;
    ContactRow m_contact;
    ChannelFeatures m_features;
    QString m_replyPlatform;
    QString m_sendError;
    std::optional<QString> m_beforeApply;
    bool m_editing = false;
};

}
