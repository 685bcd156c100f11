#pragma once

#include "BrowserTest.h"

namespace corvane {

/// A view with a fake page connection.
class PlayedBrowser : public BrowserTest {
protected:
    PlayedBrowser() { view->browser()->adopt(page); }

    void request(int id, const QString& url, int status)
    {
        page->say(u"Network.requestWillBeSent"_s,
            { { u"requestId"_s, QString::number(id) }, { u"request"_s, QJsonObject { { u"url"_s, url } } } });
        if (status == 0)
            page->say(u"Network.loadingFailed"_s, { { u"requestId"_s, QString::number(id) } });
        else
            page->say(u"Network.responseReceived"_s,
                { { u"response"_s,
                    QJsonObject { { u"status"_s, status }, { u"statusText"_s, u"Gone"_s }, { u"url"_s, url } } } });
    }
    void step(const QJsonObject& report)
    {
        page->say(u"Runtime.bindingCalled"_s,
            { { u"name"_s, u"corvaneStep"_s }, { u"payload"_s, QString::fromUtf8(QJsonDocument(report).toJson()) } });
    }
    /// Answers the last call of `method`.
    void answer(const QString& method, const QJsonObject& result)
    {
        const qsizetype call = page->methods().lastIndexOf(method);
        page->receive(
            QJsonDocument(QJsonObject { { u"id"_s, page->sent.at(call)["id"_L1] }, { u"result"_s, result } }).toJson());
    }
    void answerScript(const QJsonValue& value)
    {
        answer(u"Runtime.evaluate"_s, { { u"result"_s, QJsonObject { { u"value"_s, value } } } });
    }
    /// The page at that address is shown and loaded.
    void showPage(const QString& url)
    {
        page->say(
            u"Page.frameNavigated"_s, { { u"frame"_s, QJsonObject { { u"id"_s, u"main"_s }, { u"url"_s, url } } } });
        page->say(u"Page.loadEventFired"_s, {});
        m_clock.advance(Milliseconds(50));
    }
    /// The parameters of the last call of `method`.
    QJsonObject lastOf(const QString& method)
    {
        const qsizetype call = page->methods().lastIndexOf(method);
        return call < 0 ? QJsonObject() : page->sent.at(call)["params"_L1].toObject();
    }
    bool submit()
    {
        view->sheet()->submit();
        m_clock.advance(seconds(3)); // the page does not report its password fields, so the time limit applies
        return await([&] { return !view->sheet()->busy(); });
    }

    std::unique_ptr<BrowserView> view = makeView();
    PlayedConnection* page = new PlayedConnection;
};

}
