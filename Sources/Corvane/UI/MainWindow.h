#pragma once

#include "UI/Controls/WindowLayout.h"

#include <QQmlEngine>
#include <QQuickWindow>

namespace corvane {

class MediaDecoder;
class Screens;

/// The one window. It shows view models that others own and decides nothing of its own: closing it hides it,
/// and the work goes on.
class MainWindow : public QObject {
    Q_OBJECT
public:
    /// All of them outlive the window.
    MainWindow(Screens& screens, UserDefaults& defaults, MediaDecoder& decoder, QObject* parent = nullptr);
    ~MainWindow() override;

    /// Shows the window and brings it to the front, in the size that it had last.
    void show();
    void hide();
    bool isShown() const;

    QQmlEngine& engine() { return m_engine; } ///< for windows that look the same
    QQuickWindow* window() const { return m_window.get(); }

Q_SIGNALS:
    void appeared(); ///< each time the window comes up, before its first frame
    void firstFrame(); ///< once: something is on the screen
    void closed(); ///< the person closed the window; it is hidden now

private:
    void placeWindow(); ///< within the screen that it opens on

    WindowLayout m_layout;
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
    bool m_firstFrameSeen = false;
};

}
