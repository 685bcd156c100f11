#pragma once

#include "Presentation/Choice.h"

#include <QObject>

namespace corvane {

class ChromiumBrowserController;
class UserDefaults;

/// How the page is shown: the emulated device, the zoom, and whether the browser has a window of its own.
class BrowserDisplay : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::Choice> devices READ devices CONSTANT)
    Q_PROPERTY(QString device READ device WRITE setDevice NOTIFY changed) ///< an id of `devices`
    Q_PROPERTY(QString zoomText READ zoomText NOTIFY changed)
    Q_PROPERTY(bool windowShown READ windowShown WRITE setWindowShown NOTIFY changed) ///< from the next start on
public:
    /// Both outlive it.
    BrowserDisplay(ChromiumBrowserController& browser, UserDefaults& defaults, QObject* parent);

    QList<Choice> devices() const;
    const QString& device() const { return m_device; }
    void setDevice(const QString& id);
    QString zoomText() const;
    bool windowShown() const;
    void setWindowShown(bool shown);

    Q_INVOKABLE void zoom(int steps); ///< 0: back to the page's own size

Q_SIGNALS:
    void changed();
    void said(const QString& notice);

private:
    void apply();
    double factor() const;

    ChromiumBrowserController& m_browser;
    UserDefaults& m_defaults;
    QString m_device;
    int m_zoom = 0; ///< steps from the page's own size
};

}
