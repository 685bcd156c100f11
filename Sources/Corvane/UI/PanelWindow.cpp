#include "PanelWindow.h"

#include "Desk/CorvaneMenuBarView.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/Scheduler.h"
#include "Shell/Notices.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QScreen>

#include <algorithm>

namespace corvane {

namespace {

constexpr int margin = 8;
constexpr QSize panelSize { 380, 560 };

/// Clicking the icon takes the focus from the panel, which hides before the click arrives here.
constexpr qint64 samePressMs = 300;

}

QRect panelPlace(const QRect& free, const QPoint& at, const QSize& size)
{
    const QRect inside = free.adjusted(margin, margin, -margin, -margin);
    const auto between = [](int value, int low, int high) {
        return std::max(low, std::min(value, high));
    };
    const bool below = at.isNull() || at.y() < free.center().y();
    const int x = at.isNull() ? inside.right() : at.x() - size.width() / 2;
    const int y = at.isNull() ? inside.top() : below ? at.y() + margin : at.y() - margin - size.height();
    return { QPoint(between(x, inside.left(), inside.right() + 1 - size.width()),
                 between(y, inside.top(), inside.bottom() + 1 - size.height())),
        size };
}

PanelWindow::PanelWindow(
    QQmlEngine& engine, CorvaneMenuBarView& view, Notices& notices, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_view(view)
    , m_notices(notices)
    , m_scheduler(scheduler)
{
    connect(&view, &CorvaneMenuBarView::windowRequested, this, &PanelWindow::hide);
}

PanelWindow::~PanelWindow() = default;

bool PanelWindow::build()
{
    QQmlComponent component(&m_engine, QUrl(u"qrc:/qt/qml/Corvane/Panel/PanelFrame.qml"_s));
    std::unique_ptr<QObject> root(component.createWithInitialProperties(
        { { u"panel"_s, QVariant::fromValue(&m_view) }, { u"notices"_s, QVariant::fromValue(&m_notices) } }));
    for (const QQmlError& error : component.errors())
        log(u"PanelWindow: %1"_s.arg(error.toString()));
    m_window.reset(qobject_cast<QQuickWindow*>(root.get()));
    if (!m_window)
        return false;
    root.release();
    connect(m_window.get(), &QWindow::visibleChanged, this, [this](bool visible) {
        m_view.setVisible(visible);
        if (!visible)
            m_hiddenMs = m_scheduler.nowMs();
    });
    return true;
}

void PanelWindow::toggle(const QPoint& at)
{
    if (isShown())
        hide();
    else if (m_scheduler.nowMs() - m_hiddenMs >= samePressMs)
        show(at);
}

void PanelWindow::show(const QPoint& at)
{
    if (!m_window && !build())
        return;
    const QScreen* const screen = at.isNull() ? nullptr : QGuiApplication::screenAt(at);
    const QScreen* const where = screen ? screen : QGuiApplication::primaryScreen();
    if (where)
        m_window->setGeometry(panelPlace(where->availableGeometry(), at, panelSize));
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

void PanelWindow::hide()
{
    if (m_window)
        m_window->hide();
}

}
