#pragma once

#include <QQmlEngine>
#include <QQuickWindow>

namespace corvane {

class QuickCapture;

/// The quick capture panel, in the upper third of the screen with the pointer.
class CaptureWindow : public QObject {
    Q_OBJECT
public:
    /// Both outlive the window; the engine is the main window's, for the same look.
    CaptureWindow(QQmlEngine& engine, QuickCapture& capture, QObject* parent = nullptr);
    ~CaptureWindow() override;

    void prepare(); ///< in advance, so that it opens at once
    QQuickWindow* window() const { return m_window.get(); } ///< null until it is prepared or shown

private:
    void follow();

    QQmlEngine& m_engine;
    QuickCapture& m_capture;
    std::unique_ptr<QQuickWindow> m_window;
};

}
