#pragma once

#include "Calls/CallPlayer.h"
#include "Calls/CallSnapshot.h"

namespace corvane {

/// The sound of a call: its player, the loudness of both sides, and the marked moments.
class CallSoundView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::CallPlayer* player READ player CONSTANT)
    Q_PROPERTY(bool hasSound READ hasSound NOTIFY changed)
    Q_PROPERTY(QString noSoundText READ noSoundText NOTIFY changed)
    Q_PROPERTY(QList<float> microphoneBars READ microphoneBars NOTIFY changed)
    Q_PROPERTY(QList<float> systemBars READ systemBars NOTIFY changed)
    Q_PROPERTY(QList<double> marks READ marks NOTIFY changed) ///< from 0 to 1
    Q_PROPERTY(QStringList markTimes READ markTimes NOTIFY changed)
public:
    explicit CallSoundView(CallPlayer& player, QObject* parent = nullptr); ///< the player outlives it

    void show(const CallSnapshot& call);

    CallPlayer* player() { return &m_player; }
    bool hasSound() const { return m_call.hasSound(); }
    QString noSoundText() const;
    QList<float> microphoneBars() const;
    QList<float> systemBars() const;
    QList<double> marks() const;
    QStringList markTimes() const;

    Q_INVOKABLE void playMark(int number);

Q_SIGNALS:
    void changed();

private:
    CallPlayer& m_player;
    CallSnapshot m_call;
};

}
