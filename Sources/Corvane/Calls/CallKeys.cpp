#include "Calls/CallKeys.h"

#include "Calls/RecordingView.h"
#include "Foundation/Literals.h"

namespace corvane {

CallKeys::CallKeys(RecordingView& recording, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_record({ .id = u"recordCall"_s,
                   .label = u"Start or stop recording a call"_s,
                   .keys = { u"Ctrl+Alt+R"_s, u"Ctrl+Alt+Shift+R"_s },
                   .command = u"corvane record"_s },
          shortcuts, defaults, this)
    , m_mark({ .id = u"markCall"_s,
                 .label = u"Mark this moment of the call"_s,
                 .keys = { u"Ctrl+Alt+M"_s, u"Ctrl+Alt+Shift+M"_s },
                 .command = u"corvane mark"_s },
          shortcuts, defaults, this)
{
    connect(&m_record, &HotKey::pressed, &recording, &RecordingView::toggle);
    connect(&m_mark, &HotKey::pressed, &recording, &RecordingView::mark);
}

void CallKeys::bind()
{
    m_record.bind();
    m_mark.bind();
}

}
