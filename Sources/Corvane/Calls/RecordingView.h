#pragma once

#include "Foundation/Literals.h"
#include "Presentation/Choice.h"

namespace corvane {

class CallRecorder;

/// The running recording, as the window, the panel and the tray show it.
class RecordingView : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool recording READ recording NOTIFY changed)
    Q_PROPERTY(QString callId READ callId NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
    Q_PROPERTY(QString warningText READ warningText NOTIFY changed)
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed) ///< why a recording could not start or had to stop
    Q_PROPERTY(QString elapsedText READ elapsedText NOTIFY elapsed) ///< "12:04"
    Q_PROPERTY(double level READ level NOTIFY ticked) ///< from 0 to 1
    Q_PROPERTY(QString marksText READ marksText NOTIFY changed) ///< such as "2 marks"; empty for none
    Q_PROPERTY(QString aloudText READ aloudText NOTIFY changed)
    Q_PROPERTY(QString stopLabel READ stopLabel CONSTANT)
    Q_PROPERTY(QString markLabel READ markLabel CONSTANT)
    /// Which sound is recorded besides the microphone: none, everything, or one program's.
    Q_PROPERTY(QList<corvane::Choice> sources READ sources NOTIFY changed)
    Q_PROPERTY(QString source READ source WRITE setSource NOTIFY changed)
    Q_PROPERTY(QString sourceText READ sourceText NOTIFY changed) ///< such as "Record: everything"
    Q_PROPERTY(QString consentTitle READ consentTitle CONSTANT)
    Q_PROPERTY(QString consentText READ consentText CONSTANT)
public:
    /// `recorder` outlives the view.
    explicit RecordingView(CallRecorder& recorder, QObject* parent = nullptr);

    bool recording() const;
    QString callId() const;
    QString title() const;
    QString statusText() const;
    QString warningText() const;
    const QString& errorText() const { return m_errorText; }
    QString elapsedText() const;
    double level() const;
    QString marksText() const;
    QString aloudText() const;
    QString stopLabel() const { return u"Stop"_s; }
    QString markLabel() const { return u"Mark this moment"_s; }
    QList<Choice> sources() const { return m_sources; }
    QString source() const;
    void setSource(const QString& id); ///< for the next recording; an unknown id changes nothing
    QString sourceText() const;
    QString consentTitle() const { return u"Before you record"_s; }
    QString consentText() const;
    bool beganByItself() const; ///< the current recording was started by the calendar
    QString consentReminder() const; ///< for an automatic recording

    /// Starts a recording, after the user has confirmed once that others must consent.
    Q_INVOKABLE void start();
    Q_INVOKABLE void acceptConsent(); ///< confirms that, and starts recording
    Q_INVOKABLE void stop();
    Q_INVOKABLE void toggle();
    Q_INVOKABLE void mark();
    Q_INVOKABLE void discard(); ///< stops the recording and deletes its sound
    Q_INVOKABLE void findSources(); ///< lists the programs that are playing now

    CallRecorder& recorder() { return m_recorder; }

Q_SIGNALS:
    void changed();
    void ticked();
    void elapsed(); ///< another second
    void consentAsked();
    void started();

private:
    CallRecorder& m_recorder;
    QList<Choice> m_sources;
    QString m_errorText;
    int m_seconds = 0; ///< of the last `elapsed`
};

}
