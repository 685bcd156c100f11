#pragma once

#include <QObject>
#include <QThread>
#include <functional>

namespace corvane {

class X11ClipboardOwner;

/// Lends a text to other programs through a selection of the X server, and gives it back. It answers them on a thread
/// of its own: this program may be among those who ask, and waits for the answer on its main thread.
class X11Clipboard : public QObject {
    Q_OBJECT
public:
    enum class Selection { Clipboard, Primary };

    explicit X11Clipboard(const QByteArray& display);
    ~X11Clipboard() override;

    /// Keeps what the selection holds, as far as its owner gives it within a second, and puts the text in its place.
    /// `done` is called later, with whether that worked.
    void lend(Selection selection, const QString& text, std::function<void(bool)> done);

    /// Puts back what was there, unless another program has taken the selection since.
    void giveBack();
    void leave(); ///< the text stays there for good

Q_SIGNALS:
    void taken(); ///< somebody has read the text

private:
    QThread m_thread;
    X11ClipboardOwner* m_owner; ///< lives in the thread
};

}
