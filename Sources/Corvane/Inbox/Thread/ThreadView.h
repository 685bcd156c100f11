#pragma once

#include "Foundation/Scheduler.h"
#include "Inbox/Thread/ThreadHistory.h"
#include "Inbox/Thread/ThreadReading.h"
#include "Inbox/Thread/ThreadRow.h"
#include "Inbox/Thread/ThreadWindow.h"
#include "Presentation/RowListModel.h"
#include "Store/Messages/InboxQueries.h"

#include <QDate>

namespace corvane {

/// The open thread: all messages with one person, on all channels, newest at the end. It opens with the newest page;
/// others are loaded from the database while scrolling.
class ThreadView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString contactId READ contactId NOTIFY contactChanged)
    Q_PROPERTY(corvane::HoldingListModel* rows READ rows CONSTANT)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    Q_PROPERTY(bool hasNewer READ hasNewer NOTIFY changed) ///< after the last row
    Q_PROPERTY(corvane::ThreadReading* reading READ reading CONSTANT)
    Q_PROPERTY(corvane::ThreadHistory* history READ history CONSTANT)
    Q_PROPERTY(QString errorText READ errorText WRITE setError NOTIFY errorTextChanged)
public:
    ThreadView(EngineManager& engine, AccountStore& accounts, Scheduler& scheduler, QObject* parent = nullptr);

    const QString& contactId() const { return m_contact.id; }
    HoldingListModel* rows() { return &m_rows; }
    bool isEmpty() const { return m_window.messages().isEmpty(); }
    QString emptyText() const;
    const QString& highlightId() const { return m_highlightId; }
    bool hasNewer() const { return m_window.hasNewer(); }
    ThreadReading* reading() { return &m_reading; }
    ThreadHistory* history() { return &m_history; }
    const QString& errorText() const { return m_errorText; }

    /// A row without an id closes the thread. `unread` messages are marked as new; the mark stays until another thread
    /// is opened.
    void open(const ContactRow& contact, int unread = 0);
    void reload();
    /// Shows the message with its neighbours, highlighted for a moment; false if it is gone. Its quoted tail is
    /// expanded if the search words occur only there.
    bool show(const QString& messageId, const QString& words = {});

    const QString& firstUnreadId() const { return m_firstUnreadId; }
    const UnifiedMsgRow* message(const QString& messageId) const; ///< valid until the next reload
    void setError(const QString& text);

    using TranscriptionState = std::function<std::optional<AudioTranscriptionState>(const QString& messageId)>;
    void setTranscriptionState(TranscriptionState state) { m_transcription = std::move(state); }
    void refresh() { present(); } ///< something that the rows depend on besides the messages has changed

    Q_INVOKABLE void showNewest();
    Q_INVOKABLE void showOldest(); ///< in the database
    Q_INVOKABLE void extendOlder(); ///< loads another page from the database, if there is one
    Q_INVOKABLE void extendNewer();
    Q_INVOKABLE void showMore(const QString& messageId); ///< expands a long body
    Q_INVOKABLE void toggleQuote(const QString& messageId); ///< expands or folds the quoted tail of a mail
    Q_INVOKABLE int rowOf(const QString& messageId) const; ///< -1 if the thread does not show it

Q_SIGNALS:
    void contactChanged();
    void changed(); ///< after each reload
    void opened(); ///< the newest rows of another person are ready; older ones follow at once
    void errorTextChanged();
    void announced(const QString& text); ///< a new message, for the screen reader

private:
    enum class Opening { No, Yes };

    void highlight(const QString& messageId);
    void present(Opening opening = Opening::No);
    void presentWindow(Opening opening = Opening::No); ///< after the window's messages changed
    void markFirstUnread();

    EngineManager& m_engine;
    Scheduler& m_scheduler;
    ContactRow m_contact;
    bool m_loaded = false; ///< whether m_messages belongs to this contact
    ThreadWindow m_window;
    ThreadReading m_reading;
    ThreadHistory m_history;
    RowListModel<ThreadRow> m_rows;
    int m_unread = 0;
    ThreadPlace m_openedAt; ///< the newest message when it was opened
    QDate m_today; ///< as the rows were made for
    QString m_firstUnreadId;
    QHash<QString, qsizetype> m_lengths; ///< of long bodies, as shown
    QSet<QString> m_unfolded; ///< messages whose quoted tail is expanded
    QString m_highlightId;
    std::unique_ptr<Timer> m_highlightEnd;
    QString m_errorText;
    TranscriptionState m_transcription;
};

}
