#include "Browser/BrowserPlayer.h"

#include "Browser/ChromiumBrowserController.h"
#include "Foundation/Arrival.h"
#include "Presentation/CountWords.h"

#include <QJsonDocument>

namespace corvane {

namespace {

using Kind = BrowserStep::Kind;

constexpr Milliseconds look(100);
constexpr int looksForAnElement = 50;
constexpr int looksForAPage = 300;

/// The centre of the element in pixels of the page, once the element exists.
const QString placeOf = uR"(selector => {
    const element = document.querySelector(selector);
    if (!element) return null;
    element.scrollIntoView({ block: 'center', behavior: 'instant' });
    const box = element.getBoundingClientRect();
    return box.width && box.height ? [box.x + box.width / 2, box.y + box.height / 2] : null;
})"_s;

/// Focuses the field and selects its content.
const QString focusOn = uR"(selector => {
    const element = document.querySelector(selector);
    if (!element) return null;
    element.focus();
    element.select?.();
    return true;
})"_s;

/// Background pages are not painted.
const QString untilDrawn = u"new Promise(done => { requestAnimationFrame(() => requestAnimationFrame(done)); "
                           "setTimeout(done, 1000); })"_s;

const QString chooseIn = uR"((selector, value) => {
    const element = document.querySelector(selector);
    if (!element) return null;
    element.value = value;
    for (const name of ['input', 'change']) element.dispatchEvent(new Event(name, { bubbles: true }));
    return true;
})"_s;

}

BrowserPlayer::BrowserPlayer(ChromiumBrowserController& browser, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_browser(browser)
    , m_scheduler(scheduler)
{
}

BrowserPlayer::~BrowserPlayer()
{
    m_end.cancel();
}

void BrowserPlayer::play(const QList<BrowserStep>& steps)
{
    m_end.cancel();
    m_end = CancelHandle();
    m_isPlaying = true;
    playAll(steps, m_end);
}

void BrowserPlayer::stop()
{
    m_end.cancel();
    finish({});
}

void BrowserPlayer::say(const QString& words)
{
    m_words = words;
    Q_EMIT changed();
}

void BrowserPlayer::finish(const QString& words)
{
    m_isPlaying = false;
    say(words);
}

QCoro::Task<void> BrowserPlayer::playAll(QList<BrowserStep> steps, CancelHandle end)
{
    int withheld = 0;
    for (qsizetype i = 0; i < steps.size(); ++i) {
        say(u"Step %1 of %2: %3"_s.arg(QString::number(i + 1), QString::number(steps.size()), stepLine(steps.at(i))));
        if (steps.at(i).isWithheld) {
            ++withheld;
            continue;
        }
        const QString problem = co_await playOne(steps.at(i), end);
        if (end.isCancelled())
            co_return;
        if (!problem.isEmpty()) {
            finish(u"Stopped at step %1: %2"_s.arg(QString::number(i + 1), problem));
            co_return;
        }
    }
    const QString played = u"Played %1."_s.arg(countWords(steps.size() - withheld, u"step"_s, u"steps"_s));
    finish(withheld == 0 ? played
                         : played
                + u" %1 left out: what was typed is not kept."_s.arg(
                    countWords(withheld, u"step was"_s, u"steps were"_s)));
}

/// Why it failed; empty on success.
QCoro::Task<QString> BrowserPlayer::playOne(BrowserStep step, CancelHandle end)
{
    if (step.kind == Kind::Open) {
        if (!co_await openPage(step.text, end))
            co_return u"%1 did not open."_s.arg(step.text);
        co_await settle(end);
        co_return QString();
    }
    const QString function = step.kind == Kind::Click ? placeOf : step.kind == Kind::Choose ? chooseIn : focusOn;
    QJsonArray arguments { step.selector };
    if (step.kind == Kind::Choose)
        arguments.append(step.text);
    QJsonValue found;
    for (int looks = 0; looks < looksForAnElement && (found.isNull() || found.isUndefined()); ++looks) {
        if (looks > 0)
            co_await pause(end);
        if (end.isCancelled())
            co_return QString();
        found = co_await evaluate(function, arguments, end);
        if (end.isCancelled())
            co_return QString();
    }
    if (found.isNull() || found.isUndefined())
        co_return u"%1 is not on the page."_s.arg(step.label.isEmpty() ? step.selector : step.label);
    DevToolsConnection* const connection = m_browser.connection();
    if (!connection)
        co_return u"the browser ended."_s;
    if (step.kind == Kind::Type && !step.text.isEmpty()) {
        co_await call(u"Input.insertText"_s, { { u"text"_s, step.text } }, end);
    } else if (step.kind == Kind::Press) {
        const QString method = u"Input.dispatchKeyEvent"_s;
        connection->call(method, *keyParameters({ .isDown = true, .key = Qt::Key_Return }));
        co_await call(method, *keyParameters({ .isDown = false, .key = Qt::Key_Return }), end);
    } else if (step.kind == Kind::Click) {
        const QString method = u"Input.dispatchMouseEvent"_s;
        const QPointF at(found[0].toDouble(), found[1].toDouble());
        BrowserPointer pointer { .kind = BrowserPointer::Kind::Press, .button = Qt::LeftButton, .clicks = 1 };
        connection->call(method, pointerParameters(pointer, at));
        pointer.kind = BrowserPointer::Kind::Release;
        co_await call(method, pointerParameters(pointer, at), end);
    }
    if (!end.isCancelled())
        co_await settle(end);
    co_return QString();
}

/// A page accepts no input before it is painted. A step may also navigate to the page that the next step is for; such a
/// navigation is reported before the result of a script that runs after the step.
QCoro::Task<void> BrowserPlayer::settle(CancelHandle end)
{
    co_await call(u"Runtime.evaluate"_s, { { u"expression"_s, untilDrawn }, { u"awaitPromise"_s, true } }, end);
    for (int looks = 0; looks < looksForAPage && !end.isCancelled() && m_browser.page().isLeaving(); ++looks)
        co_await pause(end);
}

QCoro::Task<bool> BrowserPlayer::openPage(QString url, CancelHandle end)
{
    m_browser.open(url);
    for (int looks = 0; looks < looksForAPage; ++looks) {
        co_await pause(end);
        if (end.isCancelled())
            co_return false;
        if (m_browser.page().hasLoaded())
            co_return true;
        if (!m_browser.isRunning() && !m_browser.isConnecting())
            co_return false;
    }
    co_return false;
}

QCoro::Task<QJsonValue> BrowserPlayer::evaluate(QString function, QJsonArray arguments, CancelHandle end)
{
    const QString list = QString::fromUtf8(QJsonDocument(arguments).toJson(QJsonDocument::Compact));
    const QJsonObject parameters { { u"expression"_s, u"(%1)(...%2)"_s.arg(function, list) },
        { u"returnByValue"_s, true } };
    const QJsonObject result = co_await call(u"Runtime.evaluate"_s, parameters, end);
    co_return result["result"_L1]["value"_L1];
}

/// Waits for the result, since input and scripts take different paths to the page and could overtake each other.
QCoro::Task<QJsonObject> BrowserPlayer::call(QString method, QJsonObject parameters, CancelHandle end)
{
    DevToolsConnection* const connection = m_browser.connection();
    if (!connection)
        co_return QJsonObject();
    const Arrival<QJsonObject> arrival;
    const auto arrive = [arrival](const QJsonObject& result) {
        if (!arrival.hasArrived())
            arrival.arrive(result);
    };
    const auto watch = end.onCancel([arrive] { arrive({}); });
    connection->call(
        method, parameters, [arrive](const Result<QJsonObject>& result) { arrive(result.value_or(QJsonObject())); });
    co_return co_await arrival;
}

QCoro::Task<void> BrowserPlayer::pause(CancelHandle end)
{
    const Arrival<bool> arrival;
    const auto watch = end.onCancel([arrival] {
        if (!arrival.hasArrived())
            arrival.arrive(false);
    });
    m_pause = m_scheduler.after(look, [arrival] {
        if (!arrival.hasArrived())
            arrival.arrive(true);
    });
    co_await arrival;
}

}
