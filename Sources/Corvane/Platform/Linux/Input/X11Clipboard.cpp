#include "Platform/Linux/Input/X11Clipboard.h"

#include "Platform/Linux/Input/X11ClipboardOwner.h"

#include <QPointer>

namespace corvane {

X11Clipboard::X11Clipboard(const QByteArray& display)
    : m_owner(new X11ClipboardOwner(display))
{
    m_owner->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_owner, &QObject::deleteLater);
    connect(m_owner, &X11ClipboardOwner::taken, this, &X11Clipboard::taken);
    m_thread.start();
}

X11Clipboard::~X11Clipboard()
{
    m_thread.quit();
    m_thread.wait();
}

void X11Clipboard::lend(Selection selection, const QString& text, std::function<void(bool)> done)
{
    const QByteArray name = selection == Selection::Clipboard ? "CLIPBOARD" : "PRIMARY";
    QMetaObject::invokeMethod(m_owner, [this, owner = m_owner, name, bytes = text.toUtf8(), done = std::move(done)] {
        const bool isLent = owner->lend(name, bytes);
        QMetaObject::invokeMethod(this, [done, isLent] { done(isLent); });
    });
}

void X11Clipboard::giveBack()
{
    QMetaObject::invokeMethod(m_owner, &X11ClipboardOwner::giveBack);
}

void X11Clipboard::leave()
{
    QMetaObject::invokeMethod(m_owner, &X11ClipboardOwner::leave);
}

}
