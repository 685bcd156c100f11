#pragma once

#include "Foundation/Literals.h"
#include "Inbox/List/BulkSelection.h"

namespace corvane {

class AccountStore;
class ContactListView;
class EngineManager;
class ListFilter;
class LocalDB;
class OpenPerson;
class UndoOffer;

/// Actions on people in the list: archive, mute, mark as read; for one or several at once.
class ListActions : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::BulkSelection* bulk READ bulk CONSTANT) ///< the selected rows
    Q_PROPERTY(bool unarchives READ unarchives NOTIFY archiveChanged) ///< `archive` unarchives here
    Q_PROPERTY(QString archiveLabel READ archiveLabel NOTIFY archiveChanged)
    Q_PROPERTY(QString undoText READ undoText NOTIFY undoChanged) ///< empty if there is nothing to undo
public:
    /// Everything outlives the actions.
    struct Surroundings {
        EngineManager& engine;
        AccountStore& accounts;
        ListFilter& filter;
        BulkSelection& bulk;
        ContactListView& list;
        OpenPerson& person;
        UndoOffer& undo;
    };

    explicit ListActions(const Surroundings& at, QObject* parent = nullptr);

    BulkSelection* bulk() { return &m_bulk; }
    bool unarchives() const;
    QString archiveLabel() const { return unarchives() ? u"Unarchive"_s : u"Archive"_s; }
    const QString& undoText() const;

    /// Archives them, or unarchives them if the list shows the archive.
    Q_INVOKABLE void archive(const QStringList& contactIds);
    Q_INVOKABLE void archiveSelected() { archive(selected()); }
    Q_INVOKABLE void archiveChecked() { archive(QStringList(m_bulk.ids())); }
    Q_INVOKABLE void mute(const QStringList& contactIds); ///< mutes all; unmutes all if all are muted
    Q_INVOKABLE void muteSelected() { mute(selected()); }
    Q_INVOKABLE void muteChecked() { mute(QStringList(m_bulk.ids())); }
    Q_INVOKABLE void toggleRead(const QString& contactId); ///< marks as read, or as unread if nothing is unread
    Q_INVOKABLE void markCheckedRead();
    Q_INVOKABLE void markAllRead();
    Q_INVOKABLE void undo(); ///< undoes what `undoText` names
    Q_INVOKABLE void dismissUndo();

Q_SIGNALS:
    void archiveChanged();
    void undoChanged();

private:
    LocalDB& db() const;
    QStringList selected() const; ///< the open person, if any
    QString nameOf(const QString& contactId) const; ///< as the list shows it
    void afterAction();

    EngineManager& m_engine;
    AccountStore& m_accounts;
    ListFilter& m_filter;
    BulkSelection& m_bulk;
    ContactListView& m_list;
    OpenPerson& m_person;
    UndoOffer& m_undo;
};

}
