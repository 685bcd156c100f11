#pragma once

#include "UI/Controls/WindowLayout.h"

#include <QQmlEngine>
#include <QQuickWindow>

namespace corvane {

class MediaDecoder;
class Screens;

/// The main window. It shows view models owned elsewhere and decides nothing: closing it hides it, and the work
/// continues.
class MainWindow : public QObject {
    Q_OBJECT
public:
    /// All of them outlive the window.
    MainWindow(Screens& screens, UserDefaults& defaults, MediaDecoder& decoder, QObject* parent = nullptr);
    ~MainWindow() override;

    /// Raises the window, in its last size.
    void show();
    void hide();
    bool isShown() const;

    QQmlEngine& engine() { return m_engine; } ///< for other windows with the same look
    QQuickWindow* window() const { return m_window.get(); }

Q_SIGNALS:
    void appeared(); ///< whenever the window appears, before its first frame
    void firstFrame(); ///< once
    void closed(); ///< the user closed the window; it is hidden now

private:
    void placeWindow(); ///< within its screen

    WindowLayout m_layout;
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
    bool m_firstFrameSeen = false;
};

}
