#pragma once

#include "Platform/HotKey.h"

namespace corvane {

class RecordingView;

/// Two global shortcuts: one starts and stops a recording, one marks the moment.
class CallKeys : public QObject {
    Q_OBJECT
public:
    /// All references outlive the object; shortcuts may be null.
    CallKeys(RecordingView& recording, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent = nullptr);

    void bind(); ///< a second call has no effect
    QList<HotKey*> all() { return { &m_record, &m_mark }; }

private:
    HotKey m_record;
    HotKey m_mark;
};

}
