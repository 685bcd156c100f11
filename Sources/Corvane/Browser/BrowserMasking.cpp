#include "Browser/BrowserMasking.h"

#include "Browser/BrowserPage.h"
#include "Foundation/Redaction.h"

namespace corvane {

namespace {

constexpr qsizetype longestText = 4000;

}

QString masked(const BrowserPage& page, const QString& text)
{
    // Masked before it is shortened: half a secret might not look like one.
    const QString safe = redactSensitive(text, page.steps().secrets());
    return safe.size() > longestText ? safe.first(longestText) + u"…"_s : safe;
}

QList<BrowserConsoleEvent> maskedConsole(const BrowserPage& page)
{
    QList<BrowserConsoleEvent> events = page.events().console();
    for (BrowserConsoleEvent& event : events) {
        event.text = masked(page, event.text);
        event.url = masked(page, event.url);
    }
    return events;
}

QList<BrowserNetworkEvent> maskedRequests(const BrowserPage& page)
{
    QList<BrowserNetworkEvent> events = page.events().network();
    for (BrowserNetworkEvent& event : events) {
        event.url = masked(page, event.url);
        event.detail = masked(page, event.detail);
    }
    return events;
}

QList<BrowserStep> maskedSteps(const BrowserPage& page)
{
    QList<BrowserStep> steps = page.steps().steps();
    for (BrowserStep& step : steps) {
        for (QString* const text : { &step.selector, &step.label, &step.text })
            *text = masked(page, *text);
    }
    return steps;
}

}
