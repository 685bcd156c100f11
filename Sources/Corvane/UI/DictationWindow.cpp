#include "UI/DictationWindow.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Voice/DictationAnywhere.h"

#include <QCursor>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QScreen>

namespace corvane {

namespace {

constexpr int edge = 48; ///< between the panel and the bottom of the screen

}

DictationWindow::DictationWindow(QQmlEngine& engine, DictationAnywhere& dictation, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_dictation(dictation)
{
    if (!dictation.isBoundToFocus())
        connect(dictation.panel(), &DictationPanel::changed, this, &DictationWindow::followPanel);
    connect(&dictation, &DictationAnywhere::offered, this, &DictationWindow::followOffer);
}

DictationWindow::~DictationWindow() = default;

std::unique_ptr<QQuickWindow> DictationWindow::make(const QString& frame)
{
    QQmlComponent component(&m_engine, QUrl(u"qrc:/qt/qml/Corvane/Panel/%1.qml"_s.arg(frame)));
    std::unique_ptr<QObject> root(
        component.createWithInitialProperties({ { u"dictation"_s, QVariant::fromValue(&m_dictation) } }));
    for (const QQmlError& error : component.errors())
        log(u"DictationWindow: %1"_s.arg(error.toString()));
    std::unique_ptr<QQuickWindow> window(qobject_cast<QQuickWindow*>(root.get()));
    if (window)
        root.release();
    return window;
}

void DictationWindow::followPanel()
{
    if (!m_dictation.panel()->isVisible()) {
        if (m_panel)
            m_panel->hide();
        return;
    }
    if (!m_panel) {
        m_panel = make(u"DictationFrame"_s);
        if (!m_panel)
            return;
        connect(m_panel.get(), &QWindow::widthChanged, this, &DictationWindow::place);
        connect(m_panel.get(), &QWindow::heightChanged, this, &DictationWindow::place);
    }
    place();
    m_panel->show();
    m_panel->raise();
}

void DictationWindow::place()
{
    const QScreen* const pointed = QGuiApplication::screenAt(QCursor::pos());
    const QScreen* const where = pointed ? pointed : QGuiApplication::primaryScreen();
    if (!where)
        return;
    const QRect free = where->availableGeometry();
    m_panel->setPosition(
        free.x() + (free.width() - m_panel->width()) / 2, free.bottom() + 1 - edge - m_panel->height());
}

void DictationWindow::followOffer()
{
    if (m_dictation.offeredText().isEmpty()) {
        if (m_offer)
            m_offer->hide();
        return;
    }
    if (!m_offer)
        m_offer = make(u"DictationOffer"_s);
    if (!m_offer)
        return;
    m_offer->show();
    m_offer->raise();
    m_offer->requestActivate();
}

}
