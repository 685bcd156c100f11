#include "Gallery.h"

#include "Approvals/ApprovalsStore.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Shell/Notices.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QImageWriter>
#include <QKeyEvent>
#include <cstdio>

namespace corvane {

namespace {

QQuickItem* itemUnder(QQuickItem* parent, const QString& name)
{
    if (parent->objectName() == name)
        return parent;
    for (QQuickItem* child : parent->childItems()) {
        if (QQuickItem* found = itemUnder(child, name))
            return found;
    }
    return nullptr;
}

}

Gallery::Gallery(const QString& folder, qint64 nowMs)
    : m_folder(folder)
    , m_clock(nowMs)
    , m_app(AppPaths::fromEnvironment(), m_clock, pictureMachine(m_desktop, m_model))
    , m_screens(m_app)
    , m_window(m_screens, m_app.defaults(), m_app.decoder())
    , m_panel(m_window.engine(), *m_screens.panel, *m_screens.notices, m_clock)
{
    QObject::connect(&m_app.engine(), &EngineManager::eventHandled, &m_app, [this] { ++m_events; });
}

Gallery::~Gallery()
{
    m_app.willTerminate();
}

// Skips the start sequence, which would take the tool server's port from another running instance.
void Gallery::open()
{
    m_window.show();
    save(u"inbox-empty"_s);
    m_app.startAllEngines();
    for (int before = -1; before != m_events || m_events == 0;) {
        before = m_events;
        wait(Milliseconds(1000));
    }
    m_app.approvals().attach(m_app.delivery(), m_app.recordedCalls());
}

LocalDB& Gallery::db()
{
    return m_app.engine().db();
}

void Gallery::wait(Milliseconds duration)
{
    QEventLoop loop;
    const auto timer = m_clock.after(duration, [&loop] { loop.quit(); });
    loop.exec();
}

void Gallery::save(const QString& name, std::initializer_list<Look> looks)
{
    for (const Look look : looks) {
        const bool small = look == Look::LightSmall || look == Look::DarkSmall;
        window().resize(small ? QSize(1040, 660) : QSize(1320, 820));
        saveWindow(window(), name, look, small ? u"1040x660"_s : u"1320x820"_s);
    }
}

void Gallery::savePanel(const QString& name, std::initializer_list<Look> looks)
{
    m_panel.show({});
    for (const Look look : looks)
        saveWindow(*m_panel.window(), name, look, u"380x560"_s);
    m_panel.hide();
}

void Gallery::saveOther(QQuickWindow& window, const QString& name)
{
    for (const Look look : { Look::Light, Look::Dark })
        saveWindow(window, name, look, u"%1x%2"_s.arg(window.width()).arg(window.height()));
}

void Gallery::saveWindow(QQuickWindow& window, const QString& name, Look look, const QString& size)
{
    const bool dark = look == Look::Dark || look == Look::DarkSmall;
    m_desktop->scheme = dark ? ColourScheme::Dark : ColourScheme::Light;
    Q_EMIT m_desktop->appearanceChanged();
    wait(Milliseconds(250));
    const QString file = u"%1/%2-%3-%4.png"_s.arg(m_folder, name, dark ? u"dark"_s : u"light"_s, size);
    QImageWriter writer(file);
    writer.setCompression(100);
    writer.write(window.grabWindow().convertToFormat(QImage::Format_RGB888));
    std::printf("%s\n", qPrintable(file));
}

void Gallery::press(int key, Qt::KeyboardModifiers modifiers)
{
    for (const QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease }) {
        QKeyEvent event(type, key, modifiers);
        QGuiApplication::sendEvent(&window(), &event);
    }
    wait(Milliseconds(100));
}

QQuickItem* Gallery::item(const QString& name)
{
    return itemUnder(window().contentItem(), name);
}

QString Gallery::contactNamed(const QString& name)
{
    return db()
        .scalar(u"SELECT id FROM contact WHERE display_name=? AND deleted_at IS NULL;"_s, { name })
        .value_or(QString());
}

void Gallery::openThread(const QString& contactName)
{
    m_screens.inbox->person()->select(contactNamed(contactName));
    wait(Milliseconds(400));
}

}
