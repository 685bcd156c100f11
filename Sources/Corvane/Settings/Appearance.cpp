#include "Settings/Appearance.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Platform/Desktop.h"

namespace corvane {

namespace {

const QString modeKey = u"Corvane.appearance"_s;
const QString afterDesktop = u"desktop"_s;
const QString lightMode = u"light"_s;
const QString darkMode = u"dark"_s;

bool isMode(const QString& word)
{
    return word == afterDesktop || word == lightMode || word == darkMode;
}

}

Appearance::Appearance(Desktop& desktop, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_desktop(desktop)
    , m_defaults(defaults)
    , m_mode(defaults.text(modeKey).value_or(afterDesktop))
{
    if (!isMode(m_mode))
        m_mode = afterDesktop;
    connect(&m_desktop, &Desktop::appearanceChanged, this, &Appearance::changed);
}

void Appearance::setMode(const QString& mode)
{
    if (mode == m_mode || !isMode(mode))
        return;
    m_mode = mode;
    m_defaults.setText(modeKey, mode);
    Q_EMIT changed();
}

bool Appearance::dark() const
{
    return m_mode == darkMode || (m_mode == afterDesktop && m_desktop.colourScheme() == ColourScheme::Dark);
}

bool Appearance::reducedMotion() const
{
    return m_desktop.prefersReducedMotion();
}

QList<Choice> Appearance::modes() const
{
    return { { afterDesktop, u"Like the desktop"_s }, { lightMode, u"Light"_s }, { darkMode, u"Dark"_s } };
}

}
