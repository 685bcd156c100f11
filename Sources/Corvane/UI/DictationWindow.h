#pragma once

#include <QQmlEngine>
#include <QQuickWindow>

namespace corvane {

class DictationAnywhere;

/// The small dictation panel at the bottom of the screen with the pointer, and the window that offers a text that could
/// not be inserted. There is no panel if windows always take the focus.
class DictationWindow : public QObject {
    Q_OBJECT
public:
    /// Both outlive the window; the engine is the main window's, for the same look.
    DictationWindow(QQmlEngine& engine, DictationAnywhere& dictation, QObject* parent = nullptr);
    ~DictationWindow() override;

    QQuickWindow* panel() const { return m_panel.get(); } ///< null until it is first shown
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
