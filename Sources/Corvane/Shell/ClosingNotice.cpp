#include "Shell/ClosingNotice.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Platform/Tray.h"

namespace corvane {

namespace {

const QString saidKey = u"Corvane.closingNotice.said"_s;

}

ClosingNotice::ClosingNotice(const Tray* tray, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_tray(tray)
    , m_defaults(defaults)
{
}

QString ClosingNotice::text() const
{
    return u"Messages keep coming in after the window is closed, but this desktop shows no tray icon to "
           "see it by. Start Corvane again to bring the window back. To end it, choose Quit in the "
           "profile menu or press Ctrl+Q."_s;
}

bool ClosingNotice::due() const
{
    return !(m_tray && m_tray->isShown()) && !m_defaults.boolean(saidKey).value_or(false);
}

void ClosingNotice::said()
{
    m_defaults.setBoolean(saidKey, true);
}

}
