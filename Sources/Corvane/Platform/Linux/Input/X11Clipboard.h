#pragma once

#include <QObject>
#include <QThread>
#include <functional>

namespace corvane {

class X11ClipboardOwner;

/// Offers a text to other programs through an X11 selection, and restores the old content. It serves requests on a
/// thread of its own: this program may itself be a requester that waits on its main thread.
class X11Clipboard : public QObject {
    Q_OBJECT
public:
    enum class Selection { Clipboard, Primary };

    explicit X11Clipboard(const QByteArray& display);
    ~X11Clipboard() override;

    /// Saves the selection's content, as far as its owner provides it within a second, and offers the text instead.
    /// `done` is called later with whether that worked.
    void lend(Selection selection, const QString& text, std::function<void(bool)> done);

    /// Restores the old content, unless another program has taken the selection since.
    void giveBack();
    void leave(); ///< the text stays there

Q_SIGNALS:
    void taken(); ///< somebody has read the text

private:
    QThread m_thread;
    X11ClipboardOwner* m_owner; ///< lives in the thread
};

}
