#pragma once

#include "CRM/DealForm.h"
#include "CRM/PaneSection.h"
#include "Foundation/Coalescer.h"
#include "Store/Messages/InboxQueries.h"

#include <QSet>
#include <functional>

namespace corvane {

/// The person beside the open thread: possible duplicates, what agents remember, deals, notes, tasks, and the history,
/// for all contacts that were merged into one. The window remembers which sections are folded.
class CRMPane : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString contactId READ contactId NOTIFY contactChanged) ///< empty if nobody is open
    Q_PROPERTY(QString contactName READ contactName NOTIFY contactChanged)
    Q_PROPERTY(QString identityText READ identityText NOTIFY contactChanged) ///< "Same person · 2 channels", or empty
    Q_PROPERTY(QString identityEmpty READ identityEmpty NOTIFY contactChanged) ///< shown if there is nothing else
    // Of PaneRow: "Same as Ana?", with the id of the other contact, and "Merged with Ana"
    Q_PROPERTY(corvane::HoldingListModel* suggestions READ suggestions CONSTANT)
    Q_PROPERTY(corvane::HoldingListModel* merges READ merges CONSTANT)
    Q_PROPERTY(corvane::PaneSection* memory READ memory CONSTANT)
    Q_PROPERTY(corvane::PaneSection* info READ info CONSTANT)
    Q_PROPERTY(corvane::PaneSection* deals READ deals CONSTANT)
    Q_PROPERTY(corvane::PaneSection* notes READ notes CONSTANT)
    Q_PROPERTY(corvane::PaneSection* activity READ activity CONSTANT)
    Q_PROPERTY(corvane::PaneSection* tasks READ tasks CONSTANT)
    Q_PROPERTY(QStringList stages READ stages CONSTANT) ///< of a deal
    Q_PROPERTY(corvane::DealForm* dealForm READ dealForm CONSTANT)
    // What is typed and not added yet; it stays with its person until the program ends
    Q_PROPERTY(QString noteText READ noteText WRITE setNoteText NOTIFY typedChanged)
    Q_PROPERTY(QString taskText READ taskText WRITE setTaskText NOTIFY typedChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorTextChanged) ///< why the last action had no effect
public:
    /// Both outlive the pane.
    CRMPane(LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);
    ~CRMPane() override;

    const QString& contactId() const { return m_contact.id; }
    const QString& contactName() const { return m_contact.name; }
    QString identityText() const;
    QString identityEmpty() const;
    HoldingListModel* suggestions() { return &m_suggestions; }
    HoldingListModel* merges() { return &m_merges; }
    PaneSection* memory() { return &m_memory; }
    PaneSection* info() { return &m_info; }
    PaneSection* deals() { return &m_deals; }
    PaneSection* notes() { return &m_notes; }
    PaneSection* activity() { return &m_activity; }
    PaneSection* tasks() { return &m_tasks; }
    QStringList stages() const;
    DealForm* dealForm() { return &m_dealForm; }
    QString noteText() const { return m_noteTexts.value(m_contact.id); }
    void setNoteText(const QString& text);
    QString taskText() const { return m_taskTexts.value(m_contact.id); }
    void setTaskText(const QString& text);
    const QString& errorText() const { return m_errorText; }

    /// Shows the contact; a row without an id closes. Merge suggestions follow a quarter of a second after the last
    /// change of contact, since they compare all people. Calling it again for the same contact reloads, at most
    /// twice a second.
    void open(const ContactRow& contact);

    void showNote(const QString& id); ///< loads notes up to that one

    // True if it was saved; its field is then cleared. Blank texts are not saved.
    Q_INVOKABLE bool addNote(const QString& body);
    Q_INVOKABLE bool addTask(const QString& title);
    Q_INVOKABLE void moveDeal(const QString& id, const QString& stage);
    Q_INVOKABLE void completeTask(const QString& id);
    Q_INVOKABLE void forget(const QString& memoryId);

    Q_INVOKABLE void mergeWith(const QString& otherId); ///< accepts a suggestion
    Q_INVOKABLE void dismissSuggestion(const QString& otherId); ///< until the program ends
    Q_INVOKABLE void unmerge(const QString& mergeId);
    Q_INVOKABLE void dismissError() { setError({}); }

Q_SIGNALS:
    void contactChanged();
    void errorTextChanged();
    void typedChanged();
    void peopleChanged(); ///< conversations moved to another contact
    void undoable(const QString& text, const std::function<void()>& back); ///< the last action, and how to undo it

private:
    void reloadIdentity();
    void reloadMerges();
    void reloadCRM();
    QList<CRMTaskRow> openTasks() const;
    QList<CRMDealRow> latestDeals() const;
    bool done(bool saved); ///< after an action
    std::optional<QString> merge(const QString& primary, const QString& merged, const QString& signal);
    void mergeUndoably(const QString& primary, const QString& merged, const QString& signal);
    bool separate(const QString& mergeId);
    void reloadPeople(); ///< after conversations have changed hands
    void setError(const QString& text);
    void setTyped(QHash<QString, QString>& texts, const QString& text);

    LocalDB& m_db;
    Scheduler& m_scheduler;
    DealForm m_dealForm;
    ContactRow m_contact;
    QString m_primary; ///< the owner of the open thread: the contact, or the one it was merged into
    QStringList m_people; ///< the contacts of the person, the open one first
    QHash<QString, QString> m_signals; ///< by suggested contact
    QSet<std::pair<QString, QString>> m_dismissed;
    QString m_errorText;
    QHash<QString, QString> m_noteTexts; ///< by contact
    QHash<QString, QString> m_taskTexts; ///< by contact
    Coalescer m_crmSoon;
    std::unique_ptr<Timer> m_identitySoon;
    RowListModel<PaneRow> m_suggestions;
    RowListModel<PaneRow> m_merges;
    PaneSection m_memory;
    PaneSection m_info;
    PaneSection m_deals;
    PaneSection m_notes;
    PaneSection m_activity;
    PaneSection m_tasks;
};

}
