#pragma once

#include <QQmlEngine>
#include <QQuickWindow>

namespace corvane {

class QuickCapture;

/// The panel of quick capture, in the upper third of the screen with the pointer.
class CaptureWindow : public QObject {
    Q_OBJECT
public:
    /// Both outlive the window; the engine is the main window's, so that both look the same.
    CaptureWindow(QQmlEngine& engine, QuickCapture& capture, QObject* parent = nullptr);
    ~CaptureWindow() override;

    void prepare(); ///< beforehand, so that it opens at once
    QQuickWindow* window() const { return m_window.get(); } ///< null until it is prepared or shown

private:
    void follow();

    QQmlEngine& m_engine;
    QuickCapture& m_capture;
    std::unique_ptr<QQuickWindow> m_window;
};

}
