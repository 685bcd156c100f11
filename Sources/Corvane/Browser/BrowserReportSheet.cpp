#include "Browser/BrowserReportSheet.h"

#include "Browser/BrowserRows.h"
#include "Browser/ChromiumBrowserController.h"
#include "Foundation/Redaction.h"
#include "Foundation/Text.h"
#include "Presentation/CountWords.h"

namespace corvane {

namespace {

constexpr qsizetype shownEvents = 6;
constexpr int longestTitle = 160;

}

BrowserReportSheet::BrowserReportSheet(LocalDB& db, ChromiumBrowserController& browser, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_browser(browser)
    , m_severity(severities().constFirst())
{
    connect(&m_browser, &ChromiumBrowserController::eventsChanged, this, [this] {
        if (m_purpose != Purpose::Closed)
            Q_EMIT changed();
    });
}

BrowserReportSheet::~BrowserReportSheet() = default;

void BrowserReportSheet::open(
    Purpose purpose, const BrowserProject& project, const QString& sessionId, const QString& requestedURL)
{
    if (m_busy)
        return;
    m_purpose = purpose;
    m_project = project;
    m_sessionId = sessionId;
    m_requestedURL = requestedURL;
    m_picture.show(m_browser.surface()->frameImage());
    m_refusal.clear();
    const QString page = m_browser.title().isEmpty() ? m_browser.currentURL() : m_browser.title();
    m_title = firstCharacters(singleLine(u"Browser issue: "_s + page), longestTitle);
    m_severity = severities().constFirst();
    m_owner.clear();
    Q_EMIT changed();
}

void BrowserReportSheet::close()
{
    if (m_busy || m_purpose == Purpose::Closed)
        return;
    m_purpose = Purpose::Closed;
    m_picture.show({});
    Q_EMIT changed();
}

QString BrowserReportSheet::heading() const
{
    return isBug() ? u"Report a bug"_s : u"Save evidence"_s;
}

QString BrowserReportSheet::detail() const
{
    return isBug() ? u"Creates a project task with URL, screenshot, console errors, failed requests, and your note."_s
                   : u"Saves the URL, the screenshot, console errors, failed requests, and your note."_s;
}

QStringList BrowserReportSheet::severities() const
{
    return { u"High"_s, u"Medium"_s, u"Low"_s };
}

QString BrowserReportSheet::ownerHint() const
{
    return u"unassigned, Codex, teammate"_s;
}

void BrowserReportSheet::edit(QString& field, const QString& value)
{
    if (field == value)
        return;
    field = value;
    m_refusal.clear();
    Q_EMIT changed();
}

void BrowserReportSheet::setTitle(const QString& title)
{
    edit(m_title, title);
}

void BrowserReportSheet::setSeverity(const QString& severity)
{
    if (severities().contains(severity))
        edit(m_severity, severity);
}

void BrowserReportSheet::setOwner(const QString& owner)
{
    edit(m_owner, owner);
}

void BrowserReportSheet::setNote(const QString& note)
{
    edit(m_note, note);
}

QString BrowserReportSheet::preview() const
{
    return browserEvidencePreview(maskedConsole(m_browser.page()), maskedRequests(m_browser.page()), shownEvents);
}

QString BrowserReportSheet::stepsText() const
{
    QStringList lines;
    for (const BrowserStep& step : maskedSteps(m_browser.page()))
        lines.append(stepLine(step));
    return lines.join(u'\n');
}

QString BrowserReportSheet::submitLabel() const
{
    return m_busy ? u"Saving…"_s : isBug() ? u"File the bug"_s : u"Save"_s;
}

void BrowserReportSheet::submit()
{
    if (m_busy || m_purpose == Purpose::Closed)
        return;
    if (m_project.id.isEmpty())
        return refuse(u"No project selected"_s);
    if (isBug() && m_title.trimmed().isEmpty())
        return refuse(u"Title is required."_s);
    m_refusal.clear();
    setBusy(true);
    m_browser.gatherEvidence(m_requestedURL, m_note, [self = QPointer(this)](const BrowserEvidencePayload& payload) {
        if (self)
            self->write(payload);
    });
}

void BrowserReportSheet::write(const BrowserEvidencePayload& payload)
{
    m_queue.run<Result<SavedEvidence>>(
        [root = m_browser.evidenceRoot(), slug = m_project.slug, payload, picture = m_picture.picture()] {
            return writeEvidence(root, slug, payload, picture);
        },
        [this, payload](const Result<SavedEvidence>& evidence) {
            setBusy(false);
            isBug() ? file(payload, evidence) : keep(payload, evidence);
        });
}

void BrowserReportSheet::keep(const BrowserEvidencePayload& payload, const Result<SavedEvidence>& evidence)
{
    if (!evidence)
        return refuse(evidence.error().message);
    if (!saveBrowserSession(
            m_db, m_sessionId, m_project, payload.url, u"captured"_s, evidence->capturePath(), payload.lastError))
        return refuse(u"The evidence is in %1, but the database could not be written."_s.arg(evidence->folder));
    m_note.clear();
    close();
    Q_EMIT submitted(u"The evidence was saved."_s, {});
}

/// A bug is filed even if its evidence could not be saved.
void BrowserReportSheet::file(const BrowserEvidencePayload& payload, const Result<SavedEvidence>& evidence)
{
    const QString error = evidence ? QString() : evidence.error().message;
    const BrowserBug bug { .title = masked(m_browser.page(), m_title),
        .severity = m_severity,
        .owner = masked(m_browser.page(), m_owner),
        .note = payload.note,
        .url = payload.url,
        .consoleCount = payload.consoleEvents.size(),
        .networkCount = payload.networkEvents.size(),
        .evidencePath = evidence ? evidence->file() : QString(),
        .evidenceError = error };
    saveBrowserSession(m_db, m_sessionId, m_project, payload.url, u"reported"_s,
        evidence ? evidence->capturePath() : QString(), evidence ? payload.lastError : error);
    const auto item = fileBrowserBug(m_db, m_project, bug);
    if (!item)
        return refuse(u"The bug was not filed: the database could not be written. What you wrote is still here."_s);
    m_note.clear();
    close();
    Q_EMIT submitted(evidence ? u"The bug “%1” was filed."_s.arg(item->title)
                              : u"The bug “%1” was filed without its evidence. %2"_s.arg(item->title, error),
        item->id);
}

void BrowserReportSheet::refuse(const QString& reason)
{
    m_refusal = reason;
    Q_EMIT changed();
}

void BrowserReportSheet::setBusy(bool busy)
{
    m_busy = busy;
    m_picture.setLocked(busy);
    Q_EMIT changed();
}

}
