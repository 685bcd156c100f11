#pragma once

#include "Calls/CallPlayer.h"
#include "Calls/CallSnapshot.h"
#include "Presentation/RowListModel.h"

namespace corvane {

/// Who said what in a call, and which turn is playing.
class CallTranscriptView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* turns READ turns CONSTANT)
    Q_PROPERTY(int currentTurn READ currentTurn NOTIFY moved) ///< the one being played; -1 for none
    Q_PROPERTY(int firstHit READ firstHit NOTIFY changed) ///< the first search hit; -1 for none
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
public:
    explicit CallTranscriptView(CallPlayer& player, QObject* parent = nullptr); ///< the player outlives it

    void show(const CallSnapshot& call, const QString& searched);
    void leadToHit(); ///< playing starts at the first search hit

    GadgetListModel* turns() { return &m_rows; }
    int currentTurn() const;
    int firstHit() const;
    const QString& emptyText() const { return m_emptyText; }

    Q_INVOKABLE void playTurn(int number);

Q_SIGNALS:
    void changed();
    void moved();

private:
    CallPlayer& m_player;
    QList<CallTurn> m_turns;
    RowListModel<CallTurnRow> m_rows;
    QString m_emptyText;
};

}
