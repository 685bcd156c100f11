#pragma once

#include <QQmlEngine>
#include <QQuickWindow>

namespace corvane {

class DictationAnywhere;

/// The small panel of dictation at the lower edge of the screen with the pointer, and the window that offers a text
/// which no program took. Where a window comes with the focus alone, there is no panel.
class DictationWindow : public QObject {
    Q_OBJECT
public:
    /// Both outlive the window; the engine is the main window's, so that both look the same.
    DictationWindow(QQmlEngine& engine, DictationAnywhere& dictation, QObject* parent = nullptr);
    ~DictationWindow() override;

    QQuickWindow* panel() const { return m_panel.get(); } ///< null until it is shown first
    QQuickWindow* offer() const { return m_offer.get(); }

private:
    std::unique_ptr<QQuickWindow> make(const QString& frame);
    void followPanel();
    void followOffer();
    void place();

    QQmlEngine& m_engine;
    DictationAnywhere& m_dictation;
    std::unique_ptr<QQuickWindow> m_panel;
    std::unique_ptr<QQuickWindow> m_offer;
};

}
