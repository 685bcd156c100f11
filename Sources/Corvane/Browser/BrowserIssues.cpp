#include "Browser/BrowserIssues.h"

#include "Browser/ChromiumBrowserController.h"
#include "Foundation/Literals.h"
#include "Presentation/CountWords.h"

namespace corvane {

BrowserIssues::BrowserIssues(ChromiumBrowserController& browser, QObject* parent)
    : QObject(parent)
{
    connect(&browser, &ChromiumBrowserController::eventsChanged, this, [this, &browser] {
        const int before = count();
        m_rows.assign(browserIssues(maskedConsole(browser.page()), maskedRequests(browser.page())));
        if (count() != before)
            Q_EMIT changed();
    });
}

QString BrowserIssues::text() const
{
    return countWords(count(), u"issue"_s, u"issues"_s);
}

QString BrowserIssues::emptyText() const
{
    return count() == 0 ? browserEvidencePreview({}, {}, 0) : QString();
}

}
