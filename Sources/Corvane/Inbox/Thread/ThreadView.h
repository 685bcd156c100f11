#pragma once

#include "Foundation/Scheduler.h"
#include "Inbox/Thread/ThreadReading.h"
#include "Inbox/Thread/ThreadRow.h"
#include "Inbox/Thread/ThreadWindow.h"
#include "Presentation/RowListModel.h"
#include "Store/Messages/InboxQueries.h"

#include <QDate>

namespace corvane {

class AccountStore;
class EngineManager;

/// The open thread: what was said with one person, over all channels, newest at the end. It opens with the newest
/// page; the others come as the reader moves, from the database.
class ThreadView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString contactId READ contactId NOTIFY contactChanged)
    Q_PROPERTY(corvane::HoldingListModel* rows READ rows CONSTANT)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    Q_PROPERTY(QString firstUnreadId READ firstUnreadId NOTIFY contactChanged) ///< at the opening; empty for none
    Q_PROPERTY(QString highlightId READ highlightId NOTIFY highlightChanged)
    Q_PROPERTY(bool hasNewer READ hasNewer NOTIFY changed) ///< behind the last row
    Q_PROPERTY(corvane::ThreadReading* reading READ reading CONSTANT)
    Q_PROPERTY(bool canLoadOlder READ canLoadOlder NOTIFY changed)
    Q_PROPERTY(bool loadingMore READ loadingMore NOTIFY loadingMoreChanged)
    Q_PROPERTY(QString loadOlderText READ loadOlderText NOTIFY loadingMoreChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorTextChanged)
public:
    ThreadView(EngineManager& engine, AccountStore& accounts, Scheduler& scheduler, QObject* parent = nullptr);

    const QString& contactId() const { return m_contact.id; }
    HoldingListModel* rows() { return &m_rows; }
    bool isEmpty() const { return m_window.messages().isEmpty(); }
    QString emptyText() const;
    const QString& highlightId() const { return m_highlightId; }
    bool hasNewer() const { return m_window.hasNewer(); }
    ThreadReading* reading() { return &m_reading; }
    bool canLoadOlder() const; ///< from WhatsApp, where everything that is here is shown
    bool loadingMore() const { return m_loadingMore != nullptr; }
    QString loadOlderText() const;
    const QString& errorText() const { return m_errorText; }

    /// A row without an id closes the thread. `unread` messages are new to the person who opens it; the mark
    /// above them stays until another thread is opened.
    void open(const ContactRow& contact, int unread = 0);
    void reload();
    /// With its surroundings, highlighted for a moment; false where it is gone. Its quoted tail is shown where words
    /// that were searched for stand only there.
    bool show(const QString& messageId, const QString& words = {});

    const QString& firstUnreadId() const { return m_firstUnreadId; }
    const UnifiedMsgRow* message(const QString& messageId) const; ///< until the next reload
    void setError(const QString& text);

    using TranscriptionState = std::function<std::optional<AudioTranscriptionState>(const QString& messageId)>;
    void setTranscriptionState(TranscriptionState state) { m_transcription = std::move(state); }
    void refresh() { present(); } ///< what the rows depend on besides the messages has changed

    Q_INVOKABLE void showNewest();
    Q_INVOKABLE void showOldest(); ///< of what is in the database
    Q_INVOKABLE void extendOlder(); ///< by a page of the database, where it has one
    Q_INVOKABLE void extendNewer();
    Q_INVOKABLE void loadMore(); ///< what was said before, of WhatsApp
    Q_INVOKABLE void fetchMedia(const QString& messageId); ///< the download and the retry control
    Q_INVOKABLE void react(const QString& messageId, const QString& emoji);
    Q_INVOKABLE void showMore(const QString& messageId); ///< of a long body
    Q_INVOKABLE void toggleQuote(const QString& messageId); ///< shows or folds the quoted tail of a mail
    Q_INVOKABLE QString readableText(const QString& messageId) const; ///< for copying and reading aloud
    Q_INVOKABLE int rowOf(const QString& messageId) const; ///< -1 where the thread does not show it
    Q_INVOKABLE void dismissError() { setError({}); }

Q_SIGNALS:
    void contactChanged();
    void changed(); ///< after each reload
    void opened(); ///< the newest rows of somebody else are there; the older ones follow at once
    void highlightChanged();
    void loadingMoreChanged();
    void errorTextChanged();
    void refused(const QString& error); ///< by the channel: nothing older was asked for
    void announced(const QString& text); ///< a message came in: to be read aloud, politely

private:
    enum class Opening { No, Yes };

    void highlight(const QString& messageId);
    void present(Opening opening = Opening::No);
    void presentWindow(Opening opening = Opening::No); ///< after other messages came into it
    void markFirstUnread();

    EngineManager& m_engine;
    AccountStore& m_accounts;
    Scheduler& m_scheduler;
    ContactRow m_contact;
    bool m_loaded = false; ///< whether m_messages is of this contact
    ThreadWindow m_window;
    ThreadReading m_reading;
    RowListModel<ThreadRow> m_rows;
    int m_unread = 0;
    ThreadPlace m_openedAt; ///< the newest message when the thread was opened
    QDate m_today; ///< as the rows were made for
    QString m_firstUnreadId;
    QHash<QString, qsizetype> m_lengths; ///< of long bodies, as shown now
    QSet<QString> m_unfolded; ///< messages whose quoted tail is shown
    QString m_highlightId;
    std::unique_ptr<Timer> m_highlightEnd;
    std::unique_ptr<Timer> m_loadingMore;
    QString m_errorText;
    TranscriptionState m_transcription;
};

}
