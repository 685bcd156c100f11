#include "Browser/BrowserSurface.h"

#include "Browser/BrowserPage.h"

namespace corvane {

namespace {

const QString selectionOfPage = uR"JS((cut => {
    const field = document.activeElement;
    const isField = field && typeof field.selectionStart === 'number' && field.type !== 'password';
    const text = isField ? field.value.slice(field.selectionStart, field.selectionEnd) : String(getSelection());
    if (cut) document.execCommand('delete');
    return text;
})(%1))JS"_s;

}

BrowserSurface::BrowserSurface(const BrowserPage& page, QObject* parent)
    : QObject(parent)
    , m_decoder([this](const BrowserFrame& frame) { show(frame); })
{
    connect(&page, &BrowserPage::frame, this,
        [this](const QByteArray& data, QSizeF viewport) { m_decoder.offer(data, viewport); });
    connect(&page, &BrowserPage::cursorChanged, this, &BrowserSurface::cursorChanged);
}

void BrowserSurface::attach(DevToolsConnection* connection)
{
    m_connection = connection;
}

void BrowserSurface::show(const BrowserFrame& frame)
{
    const bool isFirst = m_frame.isNull();
    m_frame = frame.image;
    m_viewport = frame.viewport.isEmpty() ? QSizeF(frame.image.size()) : frame.viewport;
    Q_EMIT frameChanged();
    if (isFirst)
        Q_EMIT shown();
}

void BrowserSurface::send(const QString& method, const QJsonObject& parameters)
{
    if (m_connection)
        m_connection->call(method, parameters);
}

void BrowserSurface::clickBrowser(QPointF point, QSizeF view)
{
    BrowserPointer press { .kind = BrowserPointer::Kind::Press, .at = point, .button = Qt::LeftButton, .clicks = 1 };
    pointer(press, view);
    press.kind = BrowserPointer::Kind::Release;
    pointer(press, view);
}

void BrowserSurface::pointer(const BrowserPointer& pointer, QSizeF view)
{
    if (m_frame.isNull())
        return;
    if (const auto at = pagePoint(pointer.at, view, m_viewport))
        send(u"Input.dispatchMouseEvent"_s, pointerParameters(pointer, *at));
}

void BrowserSurface::key(const BrowserKey& key)
{
    if (const auto parameters = keyParameters(key))
        send(u"Input.dispatchKeyEvent"_s, *parameters);
}

void BrowserSurface::insertText(const QString& text)
{
    if (!text.isEmpty())
        send(u"Input.insertText"_s, { { u"text"_s, text } });
}

void BrowserSurface::compose(const QString& text, int cursor)
{
    send(u"Input.imeSetComposition"_s,
        { { u"text"_s, text }, { u"selectionStart"_s, cursor }, { u"selectionEnd"_s, cursor } });
}

void BrowserSurface::takeSelection(bool andCut, std::function<void(const QString&)> done)
{
    if (!m_connection)
        return;
    m_connection->evaluate(selectionOfPage.arg(andCut ? "true"_L1 : "false"_L1),
        [self = QPointer(this), done = std::move(done)](const QJsonValue& selection) {
            const QString text = selection.toString();
            if (self && !text.isEmpty())
                done(text);
        });
}

}
