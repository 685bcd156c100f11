#pragma once

#include "Machine.h"

#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "UI/MainWindow.h"
#include "UI/PanelWindow.h"

#include <QQuickItem>

namespace corvane {

/// The colour scheme and window size of an image.
enum class Look { Light, Dark, LightSmall, DarkSmall };

/// The real window with real view models and a database filled by the demo engines.
class Gallery {
public:
    /// Images are written to `folder`; the clock stands at `nowMs`.
    Gallery(const QString& folder, qint64 nowMs);
    ~Gallery();

    /// Shows the empty window, starts the engines and waits until they have reported everything.
    void open();

    CorvaneApp& app() { return m_app; }
    Screens& screens() { return m_screens; }
    LocalDB& db();
    QQuickWindow& window() { return *m_window.window(); }
    QQmlEngine& engine() { return m_window.engine(); }
    StandingClock& clock() { return m_clock; }
    PictureModel& model() { return *m_model; }

    void wait(Milliseconds duration);
    /// Saves an image of the window in each look.
    void save(const QString& name, std::initializer_list<Look> looks = { Look::Light, Look::Dark });
    void savePanel(const QString& name, std::initializer_list<Look> looks = { Look::Light, Look::Dark });
    void saveOther(QQuickWindow& window, const QString& name); ///< at its own size
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    QQuickItem* item(const QString& name); ///< null if there is no such item
    QString contactNamed(const QString& name); ///< its id
    void openThread(const QString& contactName);

private:
    void saveWindow(QQuickWindow& window, const QString& name, Look look, const QString& size);

    const QString m_folder;
    StandingClock m_clock;
    PictureDesktop* m_desktop = nullptr;
    PictureModel* m_model = nullptr;
    CorvaneApp m_app;
    Screens m_screens;
    MainWindow m_window;
    PanelWindow m_panel;
    int m_events = 0;
};

}
