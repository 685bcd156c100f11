#pragma once

#include <QQmlEngine>
#include <QQuickWindow>

namespace corvane {

class CorvaneMenuBarView;
class Notices;
class Scheduler;

/// The small window at the tray. It is created on demand, and only hidden afterwards.
class PanelWindow : public QObject {
    Q_OBJECT
public:
    /// All references outlive the window; the engine is the main window's, for the same look.
    PanelWindow(QQmlEngine& engine, CorvaneMenuBarView& view, Notices& notices, Scheduler& scheduler,
        QObject* parent = nullptr);
    ~PanelWindow() override;

    /// Shows the panel next to a point of the screen, such as the clicked icon; 0,0 is unknown. Hides it if it is
    /// visible.
    void toggle(const QPoint& at);
    void show(const QPoint& at);
    void hide();
    bool isShown() const { return m_window && m_window->isVisible(); }

    QQuickWindow* window() const { return m_window.get(); } ///< null until it is first shown

private:
    bool build();

    QQmlEngine& m_engine;
    CorvaneMenuBarView& m_view;
    Notices& m_notices;
    Scheduler& m_scheduler;
    std::unique_ptr<QQuickWindow> m_window;
    qint64 m_hiddenMs = 0; ///< when it was last hidden
};

/// The position for a window of this size after a click at `at`: below or above it, without covering it, within the
/// available screen area. For 0,0 the upper right corner.
QRect panelPlace(const QRect& free, const QPoint& at, const QSize& size);

}
