#include "UI/CaptureWindow.h"

#include "Desk/QuickCapture.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"

#include <QCursor>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QScreen>

namespace corvane {

CaptureWindow::CaptureWindow(QQmlEngine& engine, QuickCapture& capture, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_capture(capture)
{
    connect(&capture, &QuickCapture::visibleChanged, this, &CaptureWindow::follow);
}

CaptureWindow::~CaptureWindow() = default;

void CaptureWindow::prepare()
{
    if (m_window)
        return;
    QQmlComponent component(&m_engine, QUrl(u"qrc:/qt/qml/Corvane/Panel/CaptureFrame.qml"_s));
    std::unique_ptr<QObject> root(
        component.createWithInitialProperties({ { u"capture"_s, QVariant::fromValue(&m_capture) } }));
    for (const QQmlError& error : component.errors())
        log(u"CaptureWindow: %1"_s.arg(error.toString()));
    m_window.reset(qobject_cast<QQuickWindow*>(root.get()));
    if (m_window)
        root.release();
}

void CaptureWindow::follow()
{
    if (!m_capture.isVisible()) {
        if (m_window)
            m_window->hide();
        return;
    }
    prepare();
    if (!m_window)
        return;
    const QScreen* const pointed = QGuiApplication::screenAt(QCursor::pos());
    const QScreen* const where = pointed ? pointed : QGuiApplication::primaryScreen();
    if (where) {
        const QRect free = where->availableGeometry();
        m_window->setPosition(
            free.x() + (free.width() - m_window->width()) / 2, free.y() + free.height() / 3 - m_window->height() / 2);
    }
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

}
