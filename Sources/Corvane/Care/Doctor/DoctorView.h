#pragma once

#include "Care/Doctor/Doctor.h"
#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

class BackgroundQueue;

/// The check in the settings: its findings, and the button that fixes them.
class DoctorView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString label READ label CONSTANT)
    Q_PROPERTY(QString hint READ hint NOTIFY changed) ///< the result of the last one, or what is running now
    Q_PROPERTY(QList<corvane::Finding> findings READ findings NOTIFY changed) ///< warnings and failures first
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(bool canFix READ canFix NOTIFY changed)
    Q_PROPERTY(QString fixed READ fixed NOTIFY changed) ///< what the last repair did, a line each
public:
    /// `profile` is called on the main thread at each check. All of it outlives the object.
    struct Surroundings {
        std::function<CheckedProfile()> profile;
        BackgroundQueue& background;
        Scheduler& scheduler;
    };

    explicit DoctorView(Surroundings surroundings, QObject* parent = nullptr);
    ~DoctorView() override;

    static QString label() { return u"Check-up"_s; }
    QString hint() const;
    const QList<Finding>& findings() const { return m_findings; }
    bool busy() const { return m_run != nullptr; }
    bool canFix() const;
    QString fixed() const { return m_fixed.join(u'\n'); }

    Q_INVOKABLE void check();
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void fix(); ///< what can be fixed, and checks again

Q_SIGNALS:
    void changed();

private:
    struct Run;
    struct Outcome {
        QStringList fixed;
        QList<Finding> findings;
    };
    void start(bool mends);

    const Surroundings m_at;
    std::shared_ptr<Run> m_run; ///< while one runs
    std::unique_ptr<Timer> m_ticks;
    QList<Finding> m_findings;
    QStringList m_fixed;
};

}
