#include "Settings/DictationSettings.h"

#include "Foundation/Literals.h"
#include "Voice/DictationAnywhere.h"

namespace corvane {

DictationSettings::DictationSettings(DictationAnywhere& dictation, QObject* parent)
    : QObject(parent)
    , m_dictation(dictation)
{
    connect(&dictation, &DictationAnywhere::settingsChanged, this, &DictationSettings::changed);
}

bool DictationSettings::enabled() const
{
    return m_dictation.isEnabled();
}

void DictationSettings::setEnabled(bool on)
{
    m_dictation.setEnabled(on);
}

HotKey* DictationSettings::hotKey() const
{
    return &m_dictation.hotKey();
}

bool DictationSettings::pushToTalk() const
{
    return m_dictation.isPushToTalk();
}

void DictationSettings::setPushToTalk(bool on)
{
    m_dictation.setPushToTalk(on);
}

QString DictationSettings::insertionText() const
{
    switch (m_dictation.insertionWay()) {
    case InsertionWay::PasteKeys:
        return u"It is pasted into the focused program. The clipboard is restored."_s;
    case InsertionWay::Typing:
        return u"Through accessibility where the program in front offers it. Elsewhere it is typed; the "
               "desktop asks you once whether Corvane may."_s;
    case InsertionWay::None:
        break;
    }
    return u"Through accessibility where the program in front offers it. Elsewhere this desktop lets no "
           "program type, and a window offers the text to be copied."_s;
}

QString DictationSettings::problem() const
{
    const QString problem = m_dictation.problem();
    return problem.isEmpty() ? QString() : u"The last dictation: %1"_s.arg(problem);
}

}
