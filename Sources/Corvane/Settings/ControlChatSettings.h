#pragma once

#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"
#include "Store/Assistant/ControlChat.h"

namespace corvane {

/// A conversation that can be chosen.
class ControlChatRow {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString channel MEMBER channel)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(bool chosen MEMBER chosen)
    Q_PROPERTY(QString sentence MEMBER sentence)
public:
    QString id;
    QString title;
    QString channel; ///< such as "WHATSAPP"
    QString detail; ///< the channel's name and the account
    bool chosen = false;
    QString sentence; ///< accessible text of the row

    static constexpr const char* role = "chat";
    const QString& key() const { return id; }
    bool operator==(const ControlChatRow&) const = default;
};

/// The card for choosing the conversation from which approvals can be given. It only stores the choice.
class ControlChatSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString warning READ warning CONSTANT)
    Q_PROPERTY(QString searchText READ searchText CONSTANT)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed) ///< how to approve from the chat, once one is chosen
    Q_PROPERTY(bool chosen READ chosen NOTIFY changed)
    Q_PROPERTY(QString savedText READ savedText NOTIFY changed) ///< the result of the last action; usually empty
    Q_PROPERTY(bool failed READ failed NOTIFY changed) ///< `savedText` is an error
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed) ///< instead of the list
    /// The newest that match the query; the properties of `ControlChatRow` are the roles.
    Q_PROPERTY(corvane::GadgetListModel* chats READ chats CONSTANT)
public:
    explicit ControlChatSettings(LocalDB& db, QObject* parent = nullptr);

    QString title() const { return u"Approve from chat"_s; }
    QString warning() const
    {
        return u"Anyone with access to this chat can approve. Choose a chat only you control."_s;
    }
    QString searchText() const { return u"Search conversations"_s; }
    QString stateText() const;
    bool chosen() const { return !m_chosenId.isEmpty(); }
    const QString& savedText() const { return m_savedText; }
    bool failed() const { return m_failed; }
    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    QString emptyText() const;
    GadgetListModel* chats() { return &m_rows; }

    Q_INVOKABLE void choose(const QString& id);
    Q_INVOKABLE void turnOff();
    void refresh(); ///< reads the conversations again

Q_SIGNALS:
    void changed();

private:
    void save(const QString& id, const QString& saved);
    void filter();

    LocalDB& m_db;
    QList<ApprovalControlChat> m_chats;
    RowListModel<ControlChatRow> m_rows;
    QString m_chosenId;
    QString m_query;
    QString m_savedText;
    bool m_failed = false;
};

}
