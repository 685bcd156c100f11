#pragma once

#include "BrowserTest.h"

namespace corvane {

/// A real browser, headless and without its sandbox, since the tests may run as root.
class ChromiumTest : public BrowserTest {
protected:
    ChromiumTest() { web.answer(u"/favicon.ico"_s, LoopbackWeb::status(204)); }

    bool show(BrowserView& view, const QString& path)
    {
        view.setAddress(web.base() + path);
        view.open();
        // The first frames may still show the previous page, in the size of the browser's window.
        return awaitLive([&] {
            return view.browser()->page().hasLoaded() && view.browser()->surface()->viewportSize() == QSizeF(1280, 800);
        });
    }
    /// Waits until the value of the expression contains `part`.
    bool awaitPage(BrowserView& view, const QString& expression, const QString& part)
    {
        struct Look {
            QString value;
            bool isAsked = false;
        };
        const auto look = std::make_shared<Look>();
        return awaitLive([&] {
            if (DevToolsConnection* const connection = view.browser()->connection();
                connection && !std::exchange(look->isAsked, true))
                connection->evaluate(expression, [look](const QJsonValue& value) {
                    look->isAsked = false;
                    look->value = value.toString();
                });
            return look->value.contains(part);
        });
    }
    /// The test pages report what they observed in their titles.
    bool awaitTitle(BrowserView& view, const QString& part) { return awaitPage(view, u"document.title"_s, part); }
    void type(BrowserView& view, const QString& text)
    {
        for (const QChar letter : text) {
            view.browser()->surface()->key({ true, letter.toUpper().unicode(), letter });
            view.browser()->surface()->key({ false, letter.toUpper().unicode(), letter });
        }
    }
    void press(BrowserView& view, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        view.browser()->surface()->key({ true, key, {}, modifiers });
        view.browser()->surface()->key({ false, key, {}, modifiers });
    }

    LoopbackWeb web;
};

}
