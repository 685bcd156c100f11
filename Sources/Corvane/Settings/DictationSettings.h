#pragma once

#include "Foundation/Literals.h"
#include "Platform/HotKey.h"

namespace corvane {

class DictationAnywhere;

/// The settings of dictation into other programs.
class DictationSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY changed)
    Q_PROPERTY(QString enabledLabel READ enabledLabel CONSTANT)
    Q_PROPERTY(QString enabledHint READ enabledHint CONSTANT)
    Q_PROPERTY(corvane::HotKey* hotKey READ hotKey CONSTANT)
    Q_PROPERTY(bool pushToTalk READ pushToTalk WRITE setPushToTalk NOTIFY changed)
    Q_PROPERTY(QString pushToTalkLabel READ pushToTalkLabel CONSTANT)
    Q_PROPERTY(QString pushToTalkHint READ pushToTalkHint CONSTANT)
    Q_PROPERTY(QString insertionLabel READ insertionLabel CONSTANT)
    Q_PROPERTY(QString insertionText READ insertionText NOTIFY changed) ///< how text is inserted
    Q_PROPERTY(QString problem READ problem NOTIFY changed) ///< of the last dictation; empty for none
public:
    /// `dictation` outlives the view model.
    explicit DictationSettings(DictationAnywhere& dictation, QObject* parent = nullptr);

    bool enabled() const;
    void setEnabled(bool on);
    QString enabledLabel() const { return u"Dictate into any program"_s; }
    QString enabledHint() const
    {
        return u"Press the key, speak, press it again: what you said is written where you type. The sound stays on "
               u"this "
               "computer and is deleted."_s;
    }
    HotKey* hotKey() const;
    bool pushToTalk() const;
    void setPushToTalk(bool on);
    QString pushToTalkLabel() const { return u"Push to talk"_s; }
    QString pushToTalkHint() const { return u"Listen only while the key is held."_s; }
    QString insertionLabel() const { return u"How text is inserted"_s; }
    QString insertionText() const;
    QString problem() const;

Q_SIGNALS:
    void changed();

private:
    DictationAnywhere& m_dictation;
};

}
