#pragma once

#include "Settings/PushSheet.h"

namespace corvane {

/// The push of local chats to the web: pending chats, progress, result, and what is kept local.
class PushSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::PushSheet* sheet READ sheet CONSTANT)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(QString stateKind READ stateKind NOTIFY changed) ///< "good", "busy", "bad" or "idle"
    Q_PROPERTY(QString dueText READ dueText NOTIFY changed) ///< what is pending
    Q_PROPERTY(bool running READ running NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY changed) ///< from 0 to 1
    Q_PROPERTY(QString progressText READ progressText NOTIFY changed)
    Q_PROPERTY(QString pushLabel READ pushLabel NOTIFY changed)
    Q_PROPERTY(bool canPush READ canPush NOTIFY changed)
    Q_PROPERTY(bool canReview READ canReview NOTIFY changed) ///< independent of the push itself
    Q_PROPERTY(QString leftOutText READ leftOutText NOTIFY changed) ///< empty if nothing was left out
    Q_PROPERTY(QList<corvane::KeptLine> kept READ kept NOTIFY changed)
    Q_PROPERTY(bool batch READ batch WRITE setBatch NOTIFY changed)
    Q_PROPERTY(bool canStartOver READ canStartOver NOTIFY changed)
public:
    explicit PushSettings(const PushSheet::Surroundings& surroundings, QObject* parent = nullptr);

    PushSheet* sheet() { return &m_sheet; }
    QString stateText() const;
    QString stateKind() const;
    QString dueText() const;
    bool running() const;
    double progress() const;
    QString progressText() const;
    QString pushLabel() const;
    bool canPush() const;
    bool canReview() const;
    QString leftOutText() const;
    const QList<KeptLine>& kept() const { return m_kept; }
    bool batch() const;
    void setBatch(bool batch);
    bool canStartOver() const;

    void refresh(); ///< when the page is shown

    Q_INVOKABLE void push(); ///< the action of `pushLabel`
    Q_INVOKABLE void review();
    Q_INVOKABLE void pushTheRest();
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void release(int keptLine); ///< will be pushed again
    Q_INVOKABLE void startOver();

Q_SIGNALS:
    void changed();

private:
    void readKept();

    PushSheet::Surroundings m_at;
    PushSheet m_sheet;
    QList<KeptLocal> m_keptRows;
    QList<KeptLine> m_kept;
};

}
