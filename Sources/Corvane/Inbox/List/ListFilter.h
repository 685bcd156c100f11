#pragma once

#include "Foundation/Scheduler.h"
#include "Inbox/List/InboxList.h"
#include "Presentation/Choice.h"

#include <QObject>

namespace corvane {

class AccountStore;

/// The user's view options. Filters, modes and channels are passed to QML as words; unknown words have no effect.
class ListFilter : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString filter READ filterWord WRITE setFilterWord NOTIFY filterChanged) ///< needsMe today all archived
    Q_PROPERTY(QString viewMode READ viewModeWord WRITE setViewModeWord NOTIFY viewChanged) ///< contacts messages
    Q_PROPERTY(QString sort READ sortWord WRITE setSortWord NOTIFY viewChanged) ///< recent unread
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    Q_PROPERTY(QString searchHint READ searchHint NOTIFY stateChanged) ///< what the last word still needs
    Q_PROPERTY(QString channelFilter READ channelFilter WRITE setChannelFilter NOTIFY narrowingChanged)
    Q_PROPERTY(QString accountFilter READ accountFilter WRITE setAccountFilter NOTIFY narrowingChanged)
    Q_PROPERTY(QString channelFilterLabel READ channelFilterLabel NOTIFY narrowingChanged)
    Q_PROPERTY(QString accountFilterLabel READ accountFilterLabel NOTIFY narrowingChanged)
    Q_PROPERTY(QList<corvane::Choice> channelChoices READ channelChoices NOTIFY choicesChanged)
    Q_PROPERTY(QList<corvane::Choice> accountChoices READ accountChoices NOTIFY choicesChanged)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY stateChanged)
    Q_PROPERTY(QString emptyDetail READ emptyDetail NOTIFY stateChanged)
    Q_PROPERTY(bool emptyCanClear READ emptyCanClear NOTIFY stateChanged)
public:
    /// Both outlive the filter.
    ListFilter(AccountStore& accounts, Scheduler& scheduler, QObject* parent = nullptr);

    const InboxState& state() const { return m_state; } ///< the options of the current rows
    QString filterWord() const;
    void setFilterWord(const QString& word);
    QString viewModeWord() const;
    void setViewModeWord(const QString& word);
    QString sortWord() const;
    void setSortWord(const QString& word);
    const QString& search() const { return m_search; } ///< as typed
    void setSearch(const QString& search); ///< takes effect a quarter of a second after the last key
    QString searchHint() const { return m_state.wanted.isUsable ? m_state.wanted.hint : QString(); }
    const QString& channelFilter() const { return m_state.channelFilter; }
    void setChannelFilter(const QString& channel);
    const QString& accountFilter() const { return m_state.accountFilter; }
    void setAccountFilter(const QString& slug);
    QString channelFilterLabel() const;
    QString accountFilterLabel() const;
    const QList<Choice>& channelChoices() const { return m_channelChoices; }
    const QList<Choice>& accountChoices() const { return m_accountChoices; }
    QString emptyTitle() const;
    QString emptyDetail() const;
    bool emptyCanClear() const;

    Q_INVOKABLE void clearActiveEmptyFilter();

    void searchFor(const QString& query); ///< immediately
    void takeSearch(); ///< applies the search as typed
    void offerChoices(const QList<ContactRow>& rows); ///< the channels and accounts of these people

Q_SIGNALS:
    void filterChanged();
    void viewChanged();
    void searchChanged();
    void narrowingChanged();
    void choicesChanged();
    void stateChanged();
    void rowsChanged(); ///< other rows must be read
    void shownChanged(); ///< or the same rows are shown differently

private:
    InboxState searching(InboxState state, const QString& search) const; ///< with another search
    InboxState asTyped() const { return searching(m_state, m_search); }
    void narrow(const InboxState& state);
    QString accountLabel(const QString& slug) const;

    AccountStore& m_accounts;
    Scheduler& m_scheduler;
    InboxState m_state;
    QString m_search; ///< as typed; `m_state` follows later
    std::unique_ptr<Timer> m_searchDebounce;
    QList<Choice> m_channelChoices;
    QList<Choice> m_accountChoices;
};

}
