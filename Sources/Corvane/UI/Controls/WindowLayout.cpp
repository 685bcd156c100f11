#include "UI/Controls/WindowLayout.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"

#include <algorithm>

namespace corvane {

namespace {

const QString listWidthKey = u"Corvane.window.listWidth"_s;
const QString contactWidthKey = u"Corvane.window.contactWidth"_s;
const QString widthKey = u"Corvane.window.width"_s;
const QString heightKey = u"Corvane.window.height"_s;
constexpr int narrowestPane = 280;
constexpr int widestPane = 460;
constexpr int longestSide = 16384;

QString sectionKey(const QString& section)
{
    return u"nimb.inbox.inspector.%1.open"_s.arg(section);
}

int held(qint64 width)
{
    return int(std::clamp<qint64>(width, narrowestPane, widestPane));
}

}

WindowLayout::WindowLayout(UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
{
}

int WindowLayout::listWidth() const
{
    return paneWidth(listWidthKey, 340);
}

void WindowLayout::setListWidth(int width)
{
    setPaneWidth(listWidthKey, width);
}

int WindowLayout::contactWidth() const
{
    return paneWidth(contactWidthKey, 320);
}

void WindowLayout::setContactWidth(int width)
{
    setPaneWidth(contactWidthKey, width);
}

int WindowLayout::paneWidth(const QString& key, int usual) const
{
    return held(m_defaults.integer(key).value_or(usual));
}

void WindowLayout::setPaneWidth(const QString& key, int width)
{
    if (m_defaults.integer(key) == held(width))
        return;
    m_defaults.setInteger(key, held(width));
    Q_EMIT panesChanged();
}

bool WindowLayout::sectionOpen(const QString& section) const
{
    return m_defaults.boolean(sectionKey(section)).value_or(true);
}

void WindowLayout::setSectionOpen(const QString& section, bool open)
{
    m_defaults.setBoolean(sectionKey(section), open);
}

QSize WindowLayout::windowSize(const QSize& available) const
{
    const qint64 width = m_defaults.integer(widthKey).value_or(0);
    const qint64 height = m_defaults.integer(heightKey).value_or(0);
    const QSize size = width < 1100 || height < 700
        ? QSize(1320, 820)
        : QSize(int(std::min<qint64>(width, longestSide)), int(std::min<qint64>(height, longestSide)));
    return size.boundedTo(available);
}

bool WindowLayout::hasWindowSize() const
{
    return m_defaults.integer(widthKey).has_value();
}

void WindowLayout::setWindowSize(const QSize& size)
{
    m_defaults.setInteger(widthKey, size.width());
    m_defaults.setInteger(heightKey, size.height());
}

}
