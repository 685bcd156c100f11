#pragma once

#include <QQmlEngine>
#include <QQuickWindow>

namespace corvane {

class CorvaneMenuBarView;
class Notices;
class Scheduler;

/// The small window at the tray. It is made when it is first asked for, and only hidden afterwards.
class PanelWindow : public QObject {
    Q_OBJECT
public:
    /// All of it outlives the window; the engine is the main window's, so that both look the same.
    PanelWindow(QQmlEngine& engine, CorvaneMenuBarView& view, Notices& notices, Scheduler& scheduler,
        QObject* parent = nullptr);
    ~PanelWindow() override;

    /// Shows the panel beside a point of the screen, such as the pressed icon; 0,0 is nowhere in particular. Shown
    /// already, it hides.
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
    qint64 m_hiddenMs = 0; ///< when it last hid
};

/// Where a window of this size goes for a press at `at`: below it or above it, wherever it does not hide it, and
/// inside of what the screen has free. For 0,0 the right corner at the top.
QRect panelPlace(const QRect& free, const QPoint& at, const QSize& size);

}
