#pragma once

#include "Foundation/Cancellation.h"
#include "Store/Work/DigestQueries.h"

#include <QHash>
#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

struct AIServices;

/// Replies that the assistant drafts from the panel, one at a time per conversation. Each waits in Approvals.
class ReplyDrafts : public QObject {
    Q_OBJECT
public:
    struct State {
        bool isBusy = false;
        QString text; ///< "Drafting…", "Queued in Approvals", or the error
    };

    /// Both outlive the object.
    ReplyDrafts(LocalDB& db, AIServices& ai, QObject* parent = nullptr);
    ~ReplyDrafts() override;

    void draft(const InboxGlanceRow& row); ///< does nothing while the conversation's reply is being drafted
    State state(const QString& conversationId) const { return m_states.value(conversationId); }
    void forgetDone(); ///< clears finished states

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> run(InboxGlanceRow row, CancelHandle cancel);
    QCoro::Task<QString> queued(InboxGlanceRow row, CancelHandle cancel); ///< the state text
    void set(const QString& conversationId, const State& state);

    LocalDB& m_db;
    AIServices& m_ai;
    QHash<QString, State> m_states; ///< by conversation
    CancelHandle m_cancel;
};

}
