#pragma once

#include "Platform/HotKey.h"

namespace corvane {

class RecordingView;

/// Two keys of the whole desktop: one starts and stops a recording, one marks the moment.
class CallKeys : public QObject {
    Q_OBJECT
public:
    /// All of them outlive the keys; there may be no shortcuts.
    CallKeys(RecordingView& recording, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent = nullptr);

    void bind(); ///< again: nothing
    QList<HotKey*> all() { return { &m_record, &m_mark }; }

private:
    HotKey m_record;
    HotKey m_mark;
};

}
