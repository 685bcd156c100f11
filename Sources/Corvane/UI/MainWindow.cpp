#include "MainWindow.h"

#include "Approvals/ApprovalsView.h"
#include "Calls/CallSettings.h"
#include "Calls/CallsView.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Inbox/InboxView.h"
#include "Presentation/Commands.h"
#include "Settings/Appearance.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Shell/ClosingNotice.h"
#include "Shell/ContentView.h"
#include "Shell/LoginWallView.h"
#include "Shell/Notices.h"
#include "Shell/ProfileMenu.h"
#include "Shell/Screens.h"
#include "Shell/StoreRecovery.h"
#include "UI/Controls/ControlsTypes.h"
#include "UI/Controls/MediaCache.h"
#include "UI/ImageProviders.h"
#include "UI/QmlModules.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlContext>
#include <QScreen>

namespace corvane {

namespace {

// The desktop reports the size of its frame only after the window is shown.
constexpr QMargins windowFrame { 4, 36, 4, 4 };

/// Inter if it is installed, else the desktop's font; plain text has 13 pixels.
void chooseFont()
{
    QFont font = QGuiApplication::font();
    QStringList families = font.families();
    if (QFontDatabase::hasFamily(u"Inter"_s))
        families = { u"Inter"_s };
    // Explicit, or a text font's monochrome glyphs would be used.
    if (QFontDatabase::hasFamily(u"Noto Color Emoji"_s))
        families.append(u"Noto Color Emoji"_s);
    font.setFamilies(families);
    font.setPixelSize(13);
    QGuiApplication::setFont(font);
}

QVariant object(QObject& viewModel)
{
    return QVariant::fromValue(&viewModel);
}

}

MainWindow::MainWindow(Screens& screens, UserDefaults& defaults, MediaDecoder& decoder, QObject* parent)
    : QObject(parent)
    , m_layout(defaults)
{
    registerQmlModules();
    chooseFont();
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);

    m_engine.addImportPath(u"qrc:/qt/qml"_s);
    m_engine.addImageProvider(u"icon"_s, new IconProvider);
    new MediaCache(decoder, &m_engine);
    m_engine.setProperty(qml::CommandsType::property, QVariant::fromValue(&screens.commands));
    QQmlComponent component(&m_engine, QUrl(u"qrc:/qt/qml/Corvane/Shell/CorvaneWindow.qml"_s));
    std::unique_ptr<QObject> root;
    if (component.isReady())
        root.reset(component.createWithInitialProperties({
            { u"content"_s, object(*screens.content) },
            { u"wall"_s, object(*screens.wall) },
            { u"notices"_s, object(*screens.notices) },
            { u"recovery"_s, object(screens.recovery) },
            { u"shell"_s, object(*screens.shell) },
            { u"profile"_s, object(*screens.profile) },
            { u"settings"_s, object(*screens.settings) },
            { u"inbox"_s, object(*screens.inbox) },
            { u"approvals"_s, object(*screens.approvals) },
            { u"calls"_s, object(*screens.calls) },
            { u"callSettings"_s, object(screens.callSettings) },
            { u"appearance"_s, object(*screens.appearance) },
            { u"layout"_s, object(m_layout) },
            { u"closingNotice"_s, object(*screens.closingNotice) },
        }));
    for (const QQmlError& error : component.errors())
        log(u"MainWindow: %1"_s.arg(error.toString()));
    m_window.reset(qobject_cast<QQuickWindow*>(root.get()));
    if (!m_window)
        return;
    root.release();
    placeWindow();
    connect(m_window.get(), &QQuickWindow::frameSwapped, this, [this] {
        if (std::exchange(m_firstFrameSeen, true))
            return;
        Q_EMIT firstFrame();
    });
    connect(m_window.get(), &QWindow::visibleChanged, this, [this](bool visible) {
        if (visible)
            return;
        if (m_window->visibility() != QWindow::Maximized && m_window->visibility() != QWindow::FullScreen)
            m_layout.setWindowSize(m_window->size());
        Q_EMIT closed();
    });
}

MainWindow::~MainWindow() = default;

void MainWindow::placeWindow()
{
    const QRect screen = m_window->screen()->availableGeometry().marginsRemoved(windowFrame);
    m_window->resize(m_layout.windowSize(screen.size().expandedTo(m_window->minimumSize())));
    if (!m_layout.hasWindowSize())
        m_window->setPosition(screen.center() - QPoint(m_window->width(), m_window->height()) / 2);
}

void MainWindow::show()
{
    if (!m_window)
        return;
    if (!m_window->isVisible())
        Q_EMIT appeared();
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

void MainWindow::hide()
{
    if (m_window)
        m_window->hide();
}

bool MainWindow::isShown() const
{
    return m_window && m_window->isVisible();
}

}
