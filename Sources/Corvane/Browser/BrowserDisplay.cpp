#include "Browser/BrowserDisplay.h"

#include "Browser/ChromiumBrowserController.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

const QString windowKey = u"browserWindowShown"_s;
constexpr int mostZoom = 5;

struct Device {
    QLatin1StringView id;
    const char* label;
    QSize size;
    bool isMobile;
};

constexpr std::array allDevices {
    Device { "desktop"_L1, "Desktop, 1280 × 800", { 1280, 800 }, false },
    Device { "laptop"_L1, "Small laptop, 1024 × 768", { 1024, 768 }, false },
    Device { "tablet"_L1, "Tablet, 768 × 1024", { 768, 1024 }, true },
    Device { "phone"_L1, "Phone, 390 × 844", { 390, 844 }, true },
};

}

BrowserDisplay::BrowserDisplay(ChromiumBrowserController& browser, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_browser(browser)
    , m_defaults(defaults)
    , m_device(allDevices.front().id)
{
    m_browser.options().hasWindow = m_defaults.boolean(windowKey).value_or(false);
    apply();
}

QList<Choice> BrowserDisplay::devices() const
{
    QList<Choice> choices;
    for (const Device& device : allDevices)
        choices.append({ device.id, QString::fromUtf8(device.label) });
    return choices;
}

void BrowserDisplay::setDevice(const QString& id)
{
    m_device = id;
    apply();
    Q_EMIT changed();
}

void BrowserDisplay::zoom(int steps)
{
    m_zoom = steps == 0 ? 0 : std::clamp(m_zoom + steps, -mostZoom, mostZoom);
    apply();
    Q_EMIT changed();
}

double BrowserDisplay::factor() const
{
    constexpr double stepFactor = 1.2;
    return std::pow(stepFactor, m_zoom);
}

void BrowserDisplay::apply()
{
    const auto device = std::ranges::find_if(allDevices, [this](const Device& each) { return m_device == each.id; });
    if (device != allDevices.end())
        m_browser.page().setMetrics(device->size, factor(), device->isMobile);
}

QString BrowserDisplay::zoomText() const
{
    return u"%1 %"_s.arg(std::round(100 * factor()));
}

bool BrowserDisplay::windowShown() const
{
    return m_browser.options().hasWindow;
}

void BrowserDisplay::setWindowShown(bool shown)
{
    m_defaults.setBoolean(windowKey, shown);
    m_browser.options().hasWindow = shown;
    Q_EMIT changed();
    if (m_browser.isRunning())
        Q_EMIT said(u"This counts when the browser starts the next time."_s);
}

}
