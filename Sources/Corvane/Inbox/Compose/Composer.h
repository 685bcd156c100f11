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

/// What stands under the open thread: the text, its subject and files, the channel of the reply, a voice note. The one
/// place from which a person sends directly. Whatever else prepares a text puts it here by `apply` and cannot send.
class Composer : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString contactId READ contactId NOTIFY contactChanged) ///< empty where no thread is open
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool canSend READ canSend NOTIFY textChanged)
    Q_PROPERTY(bool takesSubject READ takesSubject NOTIFY featuresChanged)
    Q_PROPERTY(QString subject READ subject WRITE setSubject NOTIFY textChanged)
    Q_PROPERTY(corvane::Attachments* attachments READ attachments CONSTANT)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY undoChanged) ///< of the last `apply`
    Q_PROPERTY(QList<corvane::Choice> replyPlatforms READ replyPlatforms NOTIFY contactChanged)
    Q_PROPERTY(QString replyPlatform READ replyPlatform WRITE setReplyPlatform NOTIFY replyPlatformChanged)
    Q_PROPERTY(QString replyPlatformLabel READ replyPlatformLabel NOTIFY replyPlatformChanged)
    Q_PROPERTY(QString placeholder READ placeholder NOTIFY hintsChanged)
    Q_PROPERTY(bool returnSends READ returnSends NOTIFY hintsChanged) ///< Ctrl+Return always does
    Q_PROPERTY(QString sendKeys READ sendKeys NOTIFY hintsChanged)
    Q_PROPERTY(QString sendError READ sendError NOTIFY sendErrorChanged)
    Q_PROPERTY(corvane::HoldingListModel* unsent READ unsent CONSTANT) ///< of UnsentMessageItem: what did not go out
    Q_PROPERTY(bool editing MEMBER m_editing NOTIFY editingChanged) ///< the field has the keys
    Q_PROPERTY(corvane::VoiceRecorder* voice READ voice CONSTANT)
    Q_PROPERTY(corvane::ComposerDictation* dictation READ dictation CONSTANT)
    Q_PROPERTY(bool showsVoice READ showsVoice NOTIFY voiceShown) ///< a note to the open contact runs or waits
public:
    enum class Placement { After, Instead };

    struct Surroundings {
        EngineManager& engine;
        AccountStore& accounts;
        UserDefaults& defaults;
        Scheduler& scheduler;
        Microphone& microphone;
        Desktop& desktop;
        QString unsentTextsFile;
        QString unsentMessagesFile;
        VoiceServices& voice;
    };

    /// Everything outlives the composer.
    explicit Composer(const Surroundings& surroundings, QObject* parent = nullptr);
    ~Composer() override;

    void open(const ContactRow& contact); ///< with an empty id: nobody
    void setSendError(const QString& error); ///< shown until the next try
    void requestFocus() { Q_EMIT focusRequested(); }

    const QString& contactId() const { return m_contact.id; }
    QString text() const { return m_texts.message(m_contact.id).text; }
    void setText(const QString& text);
    bool takesSubject() const { return m_features.subject; }
    QString subject() const { return m_texts.message(m_contact.id).subject; }
    void setSubject(const QString& subject);
    Attachments* attachments() { return &m_attachments; }
    bool canSend() const; ///< there is something, and the channel carries it
    bool canUndo() const { return m_beforeApply.has_value(); }
    QList<Choice> replyPlatforms() const;
    const QString& replyPlatform() const { return m_replyPlatform; }
    void setReplyPlatform(const QString& platform); ///< one that the contact has
    QString replyPlatformLabel() const;
    QString placeholder() const;
    bool returnSends() const;
    QString sendKeys() const;
    const QString& sendError() const { return m_sendError; }
    HoldingListModel* unsent() { return &m_unsent.rows(); }
    VoiceRecorder* voice() { return &m_voice; }
    ComposerDictation* dictation() { return &m_dictation; }
    bool showsVoice() const;

    /// Puts a prepared text into the field: after what is there, with a blank line between, or in its place.
    void apply(const QString& text, Placement placement);

    Q_INVOKABLE void undo(); ///< the text is again what it was before the last `apply`
    Q_INVOKABLE void send();
    Q_INVOKABLE void retry(const QString& id); ///< sends a message that did not go out again
    Q_INVOKABLE void discard(const QString& id) { m_unsent.discard(id); }
    Q_INVOKABLE void dismissError() { setSendError({}); }
    Q_INVOKABLE void dropText(const QString& text); ///< let go over the field
    /// They are attached; where the channel carries no files, their texts are added, and what is no text is refused.
    Q_INVOKABLE void dropFiles(const QList<QUrl>& files);
    Q_INVOKABLE void startVoice();
    Q_INVOKABLE void dictate(); ///< begins, or ends what was said

    /// Puts what was said where the cursor stands, with blanks around it as words need; returns where the cursor is
    /// then.
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
    void dictated(const QString& text); ///< to be inserted at the cursor
    void sent(); ///< a text or a voice note went to its engine

private:
    /// Hands the open contact's conversation on the channel to `say`; where there is none, or the engine
    /// takes nothing, the error is set. True where it was taken.
    bool sendThrough(
        const QString& platform, const std::function<bool(const Account& account, const QString& chatId)>& say);
    void takeDictation(const QString& contactId, const QString& text);
    bool sendMessage(const QString& platform, const OutgoingMessage& message);
    void readFeatures(); ///< of the account that the reply goes through
    void change(const std::function<void(OutgoingMessage& message)>& change); ///< of what is written to the contact
    void gatherMerged(); ///< what was typed to contacts that are merged into the open one since
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
