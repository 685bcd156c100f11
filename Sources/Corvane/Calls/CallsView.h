#pragma once

#include "Calls/CallPage.h"
#include "Calls/RecordingView.h"
#include "Foundation/Coalescer.h"
#include "Foundation/Literals.h"
#include "Presentation/Commands.h"
#include "Store/Core/LatestRead.h"

namespace corvane {

/// All calls, the open one, and the running recording.
class CallsView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* rows READ rows CONSTANT)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(QString searchText READ searchText CONSTANT)
    Q_PROPERTY(QString selected READ selected NOTIFY changed) ///< the id of the open one
    Q_PROPERTY(corvane::CallPage* page READ page CONSTANT)
    Q_PROPERTY(corvane::RecordingView* recording READ recording CONSTANT)
    Q_PROPERTY(int proposals READ proposals NOTIFY changed) ///< pending ones, of all calls
    Q_PROPERTY(QString proposalsText READ proposalsText NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
public:
    /// All of them outlive the view.
    CallsView(RecordingView& recording, CallPlayer& player, QObject* parent = nullptr);

    GadgetListModel* rows() { return &m_rows; }
    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    QString searchText() const { return u"Search calls"_s; }
    QString selected() const { return m_page.callId(); }
    CallPage* page() { return &m_page; }
    RecordingView* recording() { return &m_recording; }
    int proposals() const;
    QString proposalsText() const;
    QString emptyTitle() const;
    QString emptyText() const;

    Q_INVOKABLE void select(const QString& id);
    Q_INVOKABLE void step(int by); ///< to the call below; negative: above
    Q_INVOKABLE void refresh();
    void show() { Q_EMIT shown(); }

Q_SIGNALS:
    void changed();
    void shown(); ///< bring the page to the front

private:
    void list(const QList<CallRecordingRow>& calls);

    CallRecorder& m_recorder;
    RowListModel<CallRow> m_rows;
    CallPage m_page;
    RecordingView& m_recording;
    QString m_query;
    LatestRead m_search;
    Coalescer m_reload;
};

QList<Command> callCommands(CallsView& calls); ///< the view outlives them

}
